// SPDX-License-Identifier: GPL-3.0-or-later
// Enter, Escape and Tab in the framed windows.
#include "info/edit_file_info_form.h"
#include "info/error.h"
#include "support/files.h"
#include "support/temporary_folder.h"
#include "support/widgets.h"
#include "support/workshop.h"

#include <QApplication>
#include <QRadioButton>
#include <doctest/doctest.h>

namespace
{

void comesForward(Form& form)
{
    form.Show();
    form.page()->window()->activateWindow();
    QApplication::processEvents();
}

}

TEST_CASE("Escape presses the button that is meant to cancel")
{
    Workshop w;
    auto& editor = w.program.editFileInfoForm();
    auto& error = w.program.error();
    struct Row {
        Form& form;
        ctl::CommandButton& button;
    };
    for (const auto& row : {Row{editor, editor.butCancel}, Row{error, error.okbutton}}) {
        CAPTURE(row.form.Name());
        comesForward(row.form);
        int presses = 0;
        row.button.Click.calls([&] { ++presses; });
        pressKey(row.form, Qt::Key_Escape);
        CHECK(presses == 1);
        row.form.Hide();
    }
}

TEST_CASE("Escape presses the Cancel of the tab that is in sight")
{
    Workshop w;
    comesForward(w.settings);
    Text pressed;
    ctl::CommandButton* const buttons[] = {&w.settings.SetEncCan, &w.settings.SetDecCan,
                                           &w.settings.SetCDtoWAVCan, &w.settings.SetWAVtoCDCan};
    for (auto* button : buttons)
        button->Click.calls([&pressed, button] { pressed += Text(button->Name()) + " "; });
    for (const int tab : {2, 0, 3, 1}) {
        w.settings.SettingsTab.setTab(tab);
        pressKey(w.settings, Qt::Key_Escape);
    }
    CHECK(pressed == "SetCDtoWAVCan SetEncCan SetWAVtoCDCan SetDecCan ");
}

TEST_CASE("Escape hides a window that has no button for it, as closing it does")
{
    Workshop w;
    comesForward(w.workbench);
    pressKey(w.workbench, Qt::Key_Escape);
    CHECK_FALSE(w.workbench.Visible());
}

TEST_CASE("Return presses the button that has the focus, once however long it is held, and no other")
{
    Workshop w;
    comesForward(w.workbench);
    int presses = 0;
    w.workbench.ExitEnc.Click.calls([&] { ++presses; });
    pressKey(w.workbench, Qt::Key_Return);
    CHECK(presses == 0);
    widgetOf<QWidget>(w.workbench, "ExitEnc")->setFocus();
    pressKey(w.workbench, Qt::Key_Return);
    CHECK(presses == 1);
    sendKey(w.workbench, QEvent::KeyPress, Qt::Key_Enter);
    for (int i = 0; i < 5; ++i)
        repeatKey(w.workbench, Qt::Key_Enter);
    CHECK(presses == 2);
}

TEST_CASE("Tab lands on the chosen option button, also when another one was chosen meanwhile")
{
    Workshop w;
    comesForward(w.settings);
    w.settings.SettingsTab.setTab(0);
    const auto focused = [] {
        auto* widget = QApplication::focusWidget();
        return widget ? widget->objectName() : QString();
    };
    const auto tabTo = [&](const QString& prefix) {
        for (int i = 0; i < 20; ++i) {
            pressKey(w.settings, Qt::Key_Tab);
            if (focused().startsWith(prefix))
                return focused();
        }
        return QString();
    };
    for (auto* chosen : {&w.settings.SetEncBitr6, &w.settings.SetEncBitr3, &w.settings.SetEncBitr14}) {
        CAPTURE(chosen->Name());
        chosen->setValue(true);
        CHECK(tabTo("SetEncBitr") == chosen->Name());
        pressKey(w.settings, Qt::Key_Tab);
        CHECK_FALSE(focused().startsWith("SetEncBitr"));
        widgetOf<QWidget>(w.settings, "SetEncOK")->setFocus();
    }
}
