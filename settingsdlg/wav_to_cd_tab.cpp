// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"
#include "platform/message_boxes.h"
#include "platform/numbers.h"
#include "program.h"
#include "settingsdlg/settings.h"
#include "workbench/mp3_encoder.h"

namespace
{

using Icon = MessageBoxes::Icon;
using Buttons = MessageBoxes::Buttons;

bool isKnownType(std::int16_t type) { return type >= 1 && type < 100; }

// None where they cannot be counted.
std::int16_t driveCount(ACDWRITE& writer)
{
    std::int16_t count = 0;
    skipping([&] { count = writer.DriveCount(); });
    return count;
}

}

void Settings::wireWavToCdTab()
{
    for (const auto& row : speedButtons)
        row.button.Click.calls([this, row] {
            writeSpeed = row.factor;
            SetWAVtoCDApp.setEnabled(true);
        });
    SetWAVtoCDcddrives.DblClick.calls(*this, &Settings::SetWAVtoCDcddrives_DblClick);
    SetWAVtoCDcdwriter.Change.calls(*this, &Settings::SetWAVtoCDcdwriter_Change);
    SetWAVtoCDwritertype.Change.calls(*this, &Settings::SetWAVtoCDwritertype_Change);
    SetWAVtoCDcdwrSetwrtype.Click.calls(*this, &Settings::SetWAVtoCDcdwrSetwrtype_Click);
    SetWAVtoCDclosedisc.Click.calls(*this, &Settings::SetWAVtoCDclosedisc_Click);
    SetWAVtoCDtestmode.Click.calls(*this, &Settings::SetWAVtoCDtestmode_Click);
    SetWAVtoCDautoeject.Click.calls(*this, &Settings::SetWAVtoCDautoeject_Click);
    SetWAVtoCDOK.Click.calls(*this, &Settings::SetWAVtoCDOK_Click);
    SetWAVtoCDApp.Click.calls(*this, &Settings::SetWAVtoCDApp_Click);
    SetWAVtoCDCan.Click.calls(*this, &Settings::SetWAVtoCDCan_Click);
}

// Asks once whether there is a writer at all, then finds it among the drives.
void Settings::start_up()
{
    if (!hasWriter())
        return;
    SetWAVtoCDcdwriter.setText("");
    if (holdsOrFails([this] { return program_.mp3Encoder().CDWriter->Init() != 0; })) {
        program_.tell("Can\u00B4t initialize ASPI or no CD-recorder found!");
        return;
    }
    listWriters();
    detectWriter();
    if (!SetWAVtoCDcdwriter.Text().empty())
        return;
    SetWAVtoCDcddrives.setEnabled(true);
    if (program_.settingsStore().GetSetting(section::wavToCd, key::hasWriter) == "yes")
        program_.platform().messageBoxes().show("Please select your CD writer!", "Select CD Writer",
                                                Icon::none, Buttons::ok);
}

bool Settings::hasWriter()
{
    auto& store = program_.settingsStore();
    if (store.GetSetting(section::wavToCd, key::hasWriter).empty()) {
        const auto answer = program_.platform().messageBoxes().show("Do you have a CD writer?", "CD Writer",
                                                                    Icon::none, Buttons::yesNo);
        store.SaveSetting(section::wavToCd, key::hasWriter,
                          answer == MessageBoxes::Answer::yes ? "yes" : "no");
    }
    return store.GetSetting(section::wavToCd, key::hasWriter) != "no";
}

void Settings::listWriters()
{
    ACDWRITE& writer = *program_.mp3Encoder().CDWriter;
    const std::int16_t count = driveCount(writer);
    for (listIndex = 1; listIndex <= count; ++listIndex)
        succeeds(
            [&] { SetWAVtoCDcddrives.AddItem(writer.DriveName(static_cast<std::int16_t>(listIndex - 1))); });
}

// The first drive whose type the control knows is the writer; none found leaves the last one tried.
void Settings::detectWriter()
{
    const std::int16_t count = driveCount(*program_.mp3Encoder().CDWriter);
    for (listIndex = 1; listIndex <= count; ++listIndex)
        if (takeWriter(static_cast<std::int16_t>(listIndex - 1)))
            listIndex = 100;
}

bool Settings::takeWriter(std::int16_t drive)
{
    ACDWRITE& writer = *program_.mp3Encoder().CDWriter;
    skipping([&] { writer.SelectDrive(drive); });
    selectedWriter = drive;
    std::int16_t type = 0;
    if (!holdsOrFails([&] { return isKnownType(type = writer.WriterType()); }))
        return false;
    skipping([&] { writer.SetWriterType(type); }, [&] { writerType = writer.WriterType(); },
             [&] { SetWAVtoCDcdwriter.setText(writer.DriveName(drive)); },
             [&] { SetWAVtoCDwritertype.setText(textOf(writerType)); });
    return true;
}

// The choice by hand, for a drive whose type is not known.
void Settings::SetWAVtoCDcddrives_DblClick()
{
    const std::int32_t count = SetWAVtoCDcddrives.ListCount();
    for (listIndex = 0; listIndex < count; ++listIndex) {
        if (!SetWAVtoCDcddrives.Selected(listIndex))
            continue;
        SetWAVtoCDcdwriter.setText(SetWAVtoCDcddrives.List(listIndex));
        SetWAVtoCDcddrives.setEnabled(false);
        program_.mp3Encoder().CDWriter->SelectDrive(listIndex);
        selectedWriter = listIndex;
        SetWAVtoCDwritertype.setEnabled(true);
        SetWAVtoCDcdwrSetwrtype.setEnabled(true);
        program_.platform().messageBoxes().show(
            "Please enter your CD writer type and press the \"Set CD Writer Type\" button.",
            "Set CD Writer Type", Icon::none, Buttons::ok);
    }
}

// 12 is refused, although the message offers it.
void Settings::SetWAVtoCDcdwrSetwrtype_Click()
{
    SetWAVtoCDApp.setEnabled(true);
    const double type = toDouble(SetWAVtoCDwritertype.Text());
    if (!(type > 0 && type < 12)) {
        program_.tell("Please enter valid CD writer type. (1 - 12)");
        return;
    }
    program_.mp3Encoder().CDWriter->SetWriterType(toInteger16(SetWAVtoCDwritertype.Text()));
    writerType = toInteger16(SetWAVtoCDwritertype.Text());
    SetWAVtoCDcdwrSetwrtype.setEnabled(false);
    SetWAVtoCDwritertype.setEnabled(false);
}

void Settings::SetWAVtoCDcdwriter_Change() { SetWAVtoCDApp.setEnabled(true); }

void Settings::SetWAVtoCDwritertype_Change() { SetWAVtoCDApp.setEnabled(true); }

void Settings::SetWAVtoCDautoeject_Click() { SetWAVtoCDApp.setEnabled(true); }

// Closing a disc and simulating keep each other out.
void Settings::SetWAVtoCDclosedisc_Click()
{
    SetWAVtoCDApp.setEnabled(true);
    if (SetWAVtoCDclosedisc.Value() == 0) {
        SetWAVtoCDtestmode.setEnabled(true);
    } else {
        SetWAVtoCDtestmode.setValue(0);
        SetWAVtoCDtestmode.setEnabled(false);
    }
}

void Settings::SetWAVtoCDtestmode_Click()
{
    SetWAVtoCDApp.setEnabled(true);
    if (SetWAVtoCDtestmode.Value() == 0) {
        SetWAVtoCDclosedisc.setEnabled(true);
    } else {
        SetWAVtoCDclosedisc.setValue(0);
        SetWAVtoCDclosedisc.setEnabled(false);
    }
}

void Settings::storeWavToCdTab()
{
    auto& store = program_.settingsStore();
    store.SaveSetting(section::wavToCd, key::selectedWriter, textOf(selectedWriter));
    store.SaveSetting(section::wavToCd, key::writeSpeed, textOf(writeSpeed));
    store.SaveSetting(section::wavToCd, key::closeDisc, textOf(SetWAVtoCDclosedisc.Value()));
    store.SaveSetting(section::wavToCd, key::simulateWriting, textOf(SetWAVtoCDtestmode.Value()));
    store.SaveSetting(section::wavToCd, key::autoEject, textOf(SetWAVtoCDautoeject.Value()));
    store.SaveSetting(section::wavToCd, key::writerType, textOf(writerType));
    store.SaveSetting(section::wavToCd, key::settingsSaved, "yes");

    ACDWRITE& writer = *program_.mp3Encoder().CDWriter;
    writer.setWriteSpeed(writeSpeed);
    writer.setCloseDisc(SetWAVtoCDclosedisc.Value() == 1);
    writer.setSimulate(SetWAVtoCDtestmode.Value() == 1);
    writer.setAutoEject(SetWAVtoCDautoeject.Value() == 1);
    writer.SelectDrive(selectedWriter);
    writer.SetWriterType(writerType);
}

void Settings::SetWAVtoCDApp_Click()
{
    storeWavToCdTab();
    SetWAVtoCDApp.setEnabled(false);
}

void Settings::SetWAVtoCDOK_Click()
{
    storeWavToCdTab();
    Hide();
}

void Settings::SetWAVtoCDCan_Click() { Hide(); }
