// SPDX-License-Identifier: GPL-3.0-or-later
// A user's hand on the toolkit's own file dialog.
#pragma once

#include "platform/text.h"
#include "support/waiting.h"
#include "support/widgets.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTimer>
#include <doctest/doctest.h>
#include <functional>
#include <set>

// On the dialog that is shown.
class FileDialogHand
{
public:
    FileDialogHand() :
        dialog_(dynamic_cast<QFileDialog&>(*QApplication::activeModalWidget())),
        name_(*dialog_.findChild<QLineEdit*>("fileNameEdit")),
        files_(*dialog_.findChild<QAbstractItemView*>("listView"))
    {
        dialog_.setViewMode(QFileDialog::List);
    }

    Text folder() const { return dialog_.directory().path().toStdString(); }
    Text name() const { return name_.text().toStdString(); }

    void goTo(const Text& folder) { dialog_.setDirectory(QString::fromStdString(folder)); }

    // A key at a time, as the window's completion sees it.
    void type(const Text& text)
    {
        enter(name_);
        name_.clear();
        typeInto(name_, QString::fromStdString(text));
    }

    // As assistive technology does, with the keyboard elsewhere.
    void write(const Text& text)
    {
        enter(files_);
        for (std::size_t length = 1; length <= text.size(); ++length)
            name_.setText(QString::fromStdString(text.substr(0, length)));
    }

    void click(const Text& file, Qt::KeyboardModifiers held = {})
    {
        enter(files_);
        const QPoint at = middleOf(file);
        send(QEvent::MouseButtonPress, at, held);
        send(QEvent::MouseButtonRelease, at, held);
    }

    void doubleClick(const Text& file)
    {
        click(file);
        finish([&] { send(QEvent::MouseButtonDblClick, middleOf(file), {}); });
    }

    void selectEverything()
    {
        enter(files_);
        files_.selectAll();
    }

    std::set<Text> shownFiles() const
    {
        std::set<Text> names;
        for (int row = 0; row < files_.model()->rowCount(files_.rootIndex()); ++row)
            names.insert(files_.model()->index(row, 0, files_.rootIndex()).data().toString().toStdString());
        return names;
    }

    std::set<Text> chosenFiles() const
    {
        std::set<Text> names;
        for (const auto& row : files_.selectionModel()->selectedRows())
            names.insert(row.data().toString().toStdString());
        return names;
    }

    const QFileSystemModel& model() const { return dynamic_cast<QFileSystemModel&>(*files_.model()); }

    // The next filter of the list, or the one before it.
    void turnFilter(Qt::Key direction)
    {
        QKeyEvent event(QEvent::KeyPress, direction, Qt::NoModifier);
        QApplication::sendEvent(dialog_.findChild<QComboBox*>("fileTypeCombo"), &event);
    }

    void accept()
    {
        finish([this] { static_cast<QDialog&>(dialog_).accept(); });
    }

    void reject() { dialog_.reject(); }

private:
    // With a yes to whether to overwrite. A dialog that refuses is left.
    void finish(const std::function<void()>& step)
    {
        QTimer answering;
        answering.callOnTimeout([this] {
            const auto* message = dialog_.findChild<QMessageBox*>();
            for (auto* button : message ? message->buttons() : QList<QAbstractButton*>())
                if (message->standardButton(button) != QMessageBox::No)
                    button->click();
        });
        answering.start(0);
        step();
        if (dialog_.isVisible())
            dialog_.reject();
    }

    // The dialog writes a selection's names only while the user is not in the name's field.
    void enter(QWidget& part)
    {
        dialog_.activateWindow();
        part.setFocus();
        CHECK(waitFor([&] { return part.hasFocus(); }));
    }

    QPoint middleOf(const Text& file)
    {
        QModelIndex row;
        CHECK(waitFor([&] {
            const QModelIndex root = files_.rootIndex();
            const QModelIndex first = files_.model()->index(0, 0, root);
            const auto found = files_.model()->match(first, Qt::DisplayRole, QString::fromStdString(file), 1,
                                                     Qt::MatchExactly | Qt::MatchCaseSensitive);
            row = found.isEmpty() ? QModelIndex() : found.front();
            return row.isValid();
        }));
        files_.scrollTo(row);
        return files_.visualRect(row).center();
    }

    void send(QEvent::Type type, QPoint at, Qt::KeyboardModifiers held)
    {
        QMouseEvent event(type, at, files_.viewport()->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, held);
        QApplication::sendEvent(files_.viewport(), &event);
    }

    QFileDialog& dialog_;
    QLineEdit& name_;
    QAbstractItemView& files_;
};
