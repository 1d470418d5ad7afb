#include "support/disc_program.h"

#include <QGroupBox>
#include <QVariant>
#include <QWidget>
#include <doctest/doctest.h>

namespace
{

struct Words {
    const char* control;
    const char* caption;
};

// A button and a box have a text, a frame has a title.
Text captionOf(Form& form, const char* name)
{
    const auto* widget = form.page()->findChild<QWidget*>(name);
    if (!widget)
        return "not there";
    const auto text = widget->property("text");
    return (text.isValid() ? text : widget->property("title")).toString().toStdString();
}

template <typename Rows>
void check(Form& form, const Rows& rows)
{
    for (const auto& row : rows) {
        CAPTURE(row.control);
        CHECK(captionOf(form, row.control) == row.caption);
    }
}

}

TEST_CASE("The disc tabs of the workbench bear these words")
{
    DiscProgram p;
    const Words rows[] = {
        {"Frame3", "Select CD Tracks"},
        {"butRefresh", "REFRESH"},
        {"EncCDtoWAVStart", "&START"},
        {"EncCDtoWAVStop", "S&TOP"},
        {"EncCDtoWAVSet", "S&ETTINGS"},
        {"EncCDtoWAVExit", "E&XIT"},
        {"frmEncCDtoWAVprogress", "Progress"},
        {"EncCDtoWAVprogressThisTrack", "This Track"},
        {"EncCDtoWAVProgressAll", "All Selected Tracks"},
        {"frmEncWAVtoCDdragndrop", "Drag And Drop Wave-Files Here (44KHz, 16bit, Stereo)"},
        {"EncWAVtoCDWrite", "&Write CD"},
        {"EncWAVtoCDsettings", "&Settings"},
        {"EncWAVtoCDExit", "E&xit"},
    };
    check(p.workbench, rows);
}

TEST_CASE("The disc tabs of the settings bear these words")
{
    DiscProgram p;
    const Words rows[] = {
        {"frmCDDrive", "Select Your CD Drive"},
        {"SetCDtoWAVFNB", "With what should the filenames begin?"},
        {"chkCDDB", "Get track titles from CDDB"},
        {"SetCDtoWAVSaveDir", "Where do you want the .wav files to be saved?"},
        {"SetCDtoWAVOK", "&OK"},
        {"SetCDtoWAVApp", "&Apply"},
        {"SetCDtoWAVCan", "&Cancel"},
        {"frmWAVtoCDcddrives", "CD Drives"},
        {"frmWAVtoCDdetectedcdwriter", "Detected CD Writer"},
        {"lblSetWAVtoCDcdwritertype", "CD Writer Type:"},
        {"SetWAVtoCDcdwrSetwrtype", "Set CD Writer Type"},
        {"frmWAVtoCDwritespeed", "Write Speed"},
        {"SetWAVtoCDSpeed1x", "1 \u00D7"},
        {"SetWAVtoCDSpeed2x", "2 \u00D7"},
        {"SetWAVtoCDSpeed4x", "4 \u00D7"},
        {"SetWAVtoCDSpeed6x", "6 \u00D7"},
        {"SetWAVtoCDSpeed8x", "8 \u00D7"},
        {"SetWAVtoCDSpeed10x", "10 \u00D7"},
        {"SetWAVtoCDSpeed12x", "12 \u00D7"},
        {"SetWAVtoCDSpeed14x", "14 \u00D7"},
        {"SetWAVtoCDSpeed16x", "16 \u00D7"},
        {"Frame10", "Options"},
        {"SetWAVtoCDclosedisc", "Close Disc"},
        {"SetWAVtoCDtestmode", "Simulate Writing"},
        {"SetWAVtoCDautoeject", "Auto Eject"},
        {"SetWAVtoCDOK", "&OK"},
        {"SetWAVtoCDApp", "&Apply"},
        {"SetWAVtoCDCan", "&Cancel"},
    };
    check(p.settings, rows);
}

TEST_CASE("No frame of the disc tabs cuts its caption")
{
    DiscProgram p;
    const auto check = [](Form& form, std::initializer_list<const char*> names) {
        for (const char* name : names) {
            CAPTURE(name);
            const auto* frame = form.page()->findChild<QGroupBox*>(name);
            REQUIRE(frame);
            CHECK(frame->fontMetrics().horizontalAdvance(frame->title()) < frame->width());
        }
    };
    check(p.workbench, {"Frame3", "frmEncCDtoWAVprogress", "EncCDtoWAVprogressThisTrack",
                        "EncCDtoWAVProgressAll", "frmEncWAVtoCDdragndrop"});
    check(p.settings, {"frmCDDrive", "SetCDtoWAVFNB", "SetCDtoWAVSaveDir", "frmWAVtoCDcddrives",
                       "frmWAVtoCDdetectedcdwriter", "frmWAVtoCDwritespeed", "Frame10"});
}

TEST_CASE("What only holds a value for the flows is never seen")
{
    DiscProgram p;
    for (const char* name : {"TLCDDB", "AccessCDDB_OK", "CDtoWAVTB", "CDtoWAVsavedir", "pc_len"}) {
        CAPTURE(name);
        CHECK(captionOf(p.workbench, name) == "not there");
    }
}
