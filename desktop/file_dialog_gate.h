// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps the toolkit's file dialog from folders that do not answer. It asks the disk on the window's thread
// for every letter of a path that is typed, and for a folder that it is to go to: it hears of neither before
// the folder has answered on a thread of its own.
#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

class QAbstractItemView;
class QFileDialog;
class QLineEdit;

namespace desktop
{

class FileDialogGate final : public QObject
{
public:
    explicit FileDialogGate(QFileDialog& dialog); // which owns it

    // Which of the typed paths does not answer, "" when all do: the dialog may be accepted then.
    QString unanswered() const;

    bool eventFilter(QObject* part, QEvent* event) override;

private:
    void standBeforeName();
    void pass(const QString& text);
    QStringList pathsIn(const QString& text) const;
    static bool leadsNowhere(const QAbstractItemView& view, const QEvent& event);

    QFileDialog& dialog_;
    QLineEdit* name_;
    QTimer again_; // while what is typed has no answer
};

}
