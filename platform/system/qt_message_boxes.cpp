#include "platform/system/qt_message_boxes.h"

#include "platform/toolkit/qt_bridge.h"

#include <QApplication>
#include <QMessageBox>

namespace
{

QMessageBox::Icon iconOf(MessageBoxes::Icon icon)
{
    switch (icon) {
    case MessageBoxes::Icon::critical:
        return QMessageBox::Critical;
    case MessageBoxes::Icon::exclamation:
        return QMessageBox::Warning;
    default:
        return QMessageBox::NoIcon;
    }
}

QMessageBox::StandardButtons buttonsOf(MessageBoxes::Buttons buttons)
{
    switch (buttons) {
    case MessageBoxes::Buttons::okCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case MessageBoxes::Buttons::yesNo:
        return QMessageBox::Yes | QMessageBox::No;
    default:
        return QMessageBox::Ok;
    }
}

MessageBoxes::Answer answerOf(int button)
{
    switch (button) {
    case QMessageBox::Cancel:
        return MessageBoxes::Answer::cancel;
    case QMessageBox::Yes:
        return MessageBoxes::Answer::yes;
    case QMessageBox::No:
        return MessageBoxes::Answer::no;
    default:
        return MessageBoxes::Answer::ok;
    }
}

}

MessageBoxes::Answer QtMessageBoxes::show(const Text& text, const Text& title, Icon icon, Buttons buttons)
{
    QMessageBox box(iconOf(icon), shown(title), QString(), buttonsOf(buttons), QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setText(shown(text).replace("\r\n", "\n"));
    box.setWindowModality(Qt::ApplicationModal);
    return answerOf(box.exec());
}
