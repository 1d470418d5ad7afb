// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/qt_message_boxes.h"

#include "toolkit/qt_bridge.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFontMetrics>
#include <QGridLayout>
#include <QKeyEvent>
#include <QMessageBox>

namespace desktop
{

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

// Without a Cancel there is no way round an answer: the library would take Escape for a No.
class Box final : public QMessageBox
{
public:
    using QMessageBox::QMessageBox;

protected:
    void closeEvent(QCloseEvent* event) override
    {
        if (isQuestion())
            event->ignore();
        else
            QMessageBox::closeEvent(event);
    }

    void keyPressEvent(QKeyEvent* event) override
    {
        if (!isQuestion() || event->key() != Qt::Key_Escape)
            QMessageBox::keyPressEvent(event);
    }

private:
    bool isQuestion() const { return standardButtons().testFlag(QMessageBox::No); }
};

// The library makes a box as wide as its text: of a short one the frame's picture and buttons would leave no
// room for the title.
void makeRoomForTitle(QMessageBox& box)
{
    constexpr int besideTitle = 140; // pixels
    QFont bold = box.font();
    bold.setBold(true);
    const int width = QFontMetrics(bold).horizontalAdvance(box.windowTitle()) + besideTitle;
    auto& rows = static_cast<QGridLayout&>(*box.layout());
    rows.addItem(new QSpacerItem(width, 0), rows.rowCount(), 0, 1, rows.columnCount());
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
    Box box(iconOf(icon), shown(title), QString(), buttonsOf(buttons), QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setText(shown(text).replace("\r\n", "\n"));
    box.setWindowModality(Qt::ApplicationModal);
    makeRoomForTitle(box);
    return answerOf(box.exec());
}

}
