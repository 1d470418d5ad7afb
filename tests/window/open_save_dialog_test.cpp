// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/qt_open_save_dialog.h"
#include "support/failures.h"
#include "support/file_dialog_hand.h"
#include "support/files.h"
#include "support/hung_share.h"
#include "support/temporary_folder.h"
#include "support/waiting.h"
#include "toolkit/later.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <doctest/doctest.h>
#include <filesystem>
#include <malloc.h>
#include <optional>

namespace
{

constexpr int cancelled = 32755;

// The main window's dialog, and a user before it.
struct Dialog {
    Dialog()
    {
        control.setDialogTitle("Select a file to open");
        control.setFilter("Wav Files|*.wav|Mp3 Files|*.mp3");
        control.setFlags(OpenSaveDialog::fileMustExist | 0x10);
        putFile(song, "");
    }

    // Shows the dialog; the user turns its filter to that row and then does `act`.
    int open(const QString& filter, const std::function<void(QFileDialog&)>& act)
    {
        later(qApp, [&] {
            auto& dialog = dynamic_cast<QFileDialog&>(*QApplication::activeModalWidget());
            auto* filters = dialog.findChild<QComboBox*>("fileTypeCombo");
            openedOn = filters->currentText();
            filters->setCurrentText(filter);
            emit filters->textActivated(filter);
            act(dialog);
        });
        return failureOf([&] { control.ShowOpen(); });
    }

    int cancel(const QString& filter)
    {
        return open(filter, [](QFileDialog& dialog) { dialog.reject(); });
    }
    int choose(const QString& filter)
    {
        return open(filter, [this](QFileDialog& dialog) {
            const QString path = QString::fromStdString(song);
            const auto* files = dialog.findChild<QFileSystemModel*>();
            // It looks at files in a thread of its own, and takes those that it has not seen for missing.
            CHECK(waitFor([&] { return files->fileInfo(files->index(path)).exists(); }));
            dialog.setDirectory(QString::fromStdString(folder.path()));
            dialog.findChild<QLineEdit*>("fileNameEdit")->setText("song.mp3");
            static_cast<QDialog&>(dialog).accept();
        });
    }

    TemporaryFolder folder;
    const Text song = folder / "song.mp3";
    desktop::QtOpenSaveDialog control;
    QString openedOn; // the filter that the user saw first
};

}

TEST_CASE("Cancelling fails, and the kind stays whatever the filter was turned to")
{
    for (const std::int16_t before : {0, 1, 2}) {
        CAPTURE(before);
        Dialog dialog;
        dialog.control.setFilterIndex(before);
        CHECK(dialog.cancel("Mp3 Files") == cancelled);
        CHECK(dialog.control.FilterIndex() == before);
        CHECK(dialog.control.FileName().empty());
        CHECK(dialog.control.FileTitle().empty());
    }
}

TEST_CASE("Where cancelling is no failure, the dialog ends with no name, also after a choice before")
{
    Dialog dialog;
    REQUIRE(dialog.choose("Mp3 Files") == 0);
    dialog.control.setCancelError(false);
    CHECK(dialog.cancel("Wav Files") == 0);
    CHECK(dialog.control.FilterIndex() == 2);
    CHECK(dialog.control.FileName().empty());
}

TEST_CASE("The filter that a choice was made on is the kind, whatever the name ends in")
{
    for (const std::int16_t row : {1, 2}) {
        CAPTURE(row);
        Dialog dialog;
        CHECK(dialog.choose(row == 1 ? "Wav Files" : "Mp3 Files") == 0);
        CHECK(dialog.control.FilterIndex() == row);
        CHECK(dialog.control.FileName() == dialog.song);
        CHECK(dialog.control.FileTitle() == "song.mp3");
    }
}

TEST_CASE("The dialog opens on the kind that is set, and on the first row for any other number")
{
    struct Row {
        std::int16_t index;
        const char* shown;
    };
    for (const auto& c : {Row{0, "Wav Files"}, Row{1, "Wav Files"}, Row{2, "Mp3 Files"}, Row{3, "Wav Files"},
                          Row{-1, "Wav Files"}}) {
        CAPTURE(c.index);
        Dialog dialog;
        dialog.control.setFilterIndex(c.index);
        dialog.cancel("Mp3 Files");
        CHECK(dialog.openedOn == c.shown);
        CHECK(dialog.control.FilterIndex() == c.index);
    }
}

TEST_CASE("Each dialog begins anew: no name, no selection, the filter and the title that are set")
{
    Dialog dialog;
    REQUIRE(dialog.choose("Mp3 Files") == 0);
    dialog.control.setFilter("List Files|*.vlp|All Files|*.*");
    dialog.control.setFilterIndex(2);
    dialog.control.setDialogTitle("Another");
    Text name = "?";
    QString title;
    dialog.open("List Files", [&](QFileDialog& window) {
        name = window.findChild<QLineEdit*>("fileNameEdit")->text().toStdString();
        title = window.windowTitle();
        CHECK(window.nameFilters().size() == 2);
        CHECK_FALSE(window.findChild<QAbstractItemView*>("listView")->selectionModel()->hasSelection());
        window.reject();
    });
    CHECK(name.empty());
    CHECK(title == "Another");
    CHECK(dialog.openedOn == "All Files");
}

TEST_CASE("Saving asks before it replaces a file where that is set, and nowhere else")
{
    for (const std::int32_t flags : {0, std::int32_t{OpenSaveDialog::askBeforeOverwriting}}) {
        CAPTURE(flags);
        Dialog dialog;
        dialog.control.setFlags(flags);
        std::optional<bool> asks;
        later(qApp, [&] {
            auto& window = dynamic_cast<QFileDialog&>(*QApplication::activeModalWidget());
            asks = !window.testOption(QFileDialog::DontConfirmOverwrite);
            window.reject();
        });
        CHECK(failureOf([&] { dialog.control.ShowSave(); }) == cancelled);
        CHECK(asks == (flags != 0));
    }
}

TEST_CASE("Without filters every file can be chosen, and the kind is the first")
{
    Dialog dialog;
    dialog.control.setFilter("");
    dialog.control.setFilterIndex(2);
    CHECK(dialog.choose("") == 0);
    CHECK(dialog.control.FileName() == dialog.song);
    CHECK(dialog.control.FilterIndex() == 1);
}

TEST_CASE("A dialog that opens over another of the same control is a window of its own")
{
    Dialog dialog;
    int inner = 0;
    const QFileDialog* first = nullptr;
    dialog.open("Mp3 Files", [&](QFileDialog& window) {
        first = &window;
        later(qApp, [&] {
            auto* second = dynamic_cast<QFileDialog*>(QApplication::activeModalWidget());
            REQUIRE(second != nullptr);
            CHECK(second != first);
            second->reject();
        });
        inner = failureOf([&] { dialog.control.ShowOpen(); });
        window.reject();
    });
    CHECK(first != nullptr);
    CHECK(inner == cancelled);
}

TEST_CASE("Forty dialogs cost less than a megabyte in all")
{
    Dialog dialog;
    for (int time = 0; time < 3; ++time)
        dialog.cancel("Mp3 Files");
    const auto before = mallinfo2();
    for (int time = 0; time < 40; ++time)
        dialog.cancel("Mp3 Files");
    const auto after = mallinfo2();
    MESSAGE("kept by forty dialogs, KB: ", (after.uordblks - before.uordblks) / 1024.0);
    CHECK(after.uordblks + after.hblkhd < before.uordblks + before.hblkhd + 1024 * 1024);
}

TEST_CASE("The dialog shows and takes a file whose contents nobody can read")
{
    Dialog dialog;
    const Text mute = dialog.folder / "mute"; // its name tells nothing, so a look inside would be next
    putFile(mute, "ID3");
    dialog.control.setFilter("All Files|*.*");
    const HungShare hung(mute.c_str(), HungShare::Holds::contents);
    const int result = dialog.open("All Files", [&](QFileDialog& window) {
        const QString path = QString::fromStdString(mute);
        window.setDirectory(QString::fromStdString(dialog.folder.path()));
        auto* files = window.findChild<QFileSystemModel*>();
        CHECK(waitFor([&] { return files->fileInfo(files->index(path)).exists(); }));
        CHECK(files->type(files->index(path)) != "");
        CHECK_FALSE(files->fileIcon(files->index(path)).isNull());
        window.findChild<QLineEdit*>("fileNameEdit")->setText("mute");
        static_cast<QDialog&>(window).accept();
    });
    CHECK(result == 0);
    CHECK(dialog.control.FileName() == mute);
    CHECK(hung.waiting() == 0);
}

TEST_CASE("A dialog whose last folder does not answer begins elsewhere, soon")
{
    Dialog dialog;
    REQUIRE(dialog.choose("Mp3 Files") == 0);
    const HungShare hung(dialog.folder.path().c_str());
    const auto then = std::chrono::steady_clock::now();
    QString begins;
    const int result = dialog.open("Mp3 Files", [&](QFileDialog& window) {
        begins = window.directory().absolutePath();
        window.reject();
    });
    CHECK(result == cancelled);
    CHECK(begins != "");
    CHECK(begins != QString::fromStdString(dialog.folder.path()));
    CHECK(std::chrono::steady_clock::now() - then < std::chrono::seconds(30));
}

TEST_CASE("A folder for music that does not answer, where another program's dialog ended, holds no dialog up")
{
    Dialog dialog;
    const QString music = QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
    QSettings settings(QSettings::UserScope, "QtProject");
    const QVariant before = settings.value("FileDialog/lastVisited");
    settings.setValue("FileDialog/lastVisited", QUrl::fromLocalFile(music).toString());
    settings.sync();
    const HungShare hung(music.toStdString().c_str());
    const auto then = std::chrono::steady_clock::now();
    CHECK(dialog.cancel("Mp3 Files") == cancelled);
    CHECK(std::chrono::steady_clock::now() - then < std::chrono::seconds(30));
    settings.setValue("FileDialog/lastVisited", before);
}

TEST_CASE("The view that a person chose is the next dialog's, and what stays as it was is not written again")
{
    using enum QFileDialog::ViewMode;
    Dialog dialog;
    const QString kept = QSettings(QSettings::UserScope, "QtProject").fileName();
    const auto viewAfter = [&](QFileDialog::ViewMode wanted) {
        auto view = wanted;
        dialog.open("Mp3 Files", [&](QFileDialog& window) {
            view = window.viewMode();
            window.setViewMode(wanted);
            window.reject();
        });
        return view;
    };
    for (const auto wanted : {List, Detail, List, Detail}) {
        const bool isNew = viewAfter(wanted) != wanted;
        const Text line = wanted == List ? "viewMode=List\n" : "viewMode=Detail\n";
        const auto isWritten = [&] { return fileBytes(kept.toStdString()).find(line) != Text::npos; };
        CHECK((!isNew || waitFor(isWritten))); // by a thread
        CHECK(viewAfter(wanted) == wanted);
    }
    const auto written = std::filesystem::last_write_time(kept.toStdString());
    for (int time = 0; time < 3; ++time)
        CHECK(dialog.cancel("Mp3 Files") == cancelled);
    CHECK(std::filesystem::last_write_time(kept.toStdString()) == written);
    CHECK(QSettings(QSettings::UserScope, "QtProject").fileName() == kept);
}

namespace
{

// A share beside the folder that a dialog shows, and what a hand does in it.
struct ShareBeside {
    Dialog dialog;
    const Text share = dialog.folder / "share";

    ShareBeside()
    {
        std::filesystem::create_directory(share);
        putFile(share + "/song.mp3", "");
    }

    // Whether the dialog was done with soon: what waits for the share takes a minute.
    bool endsSoon(const std::function<void(QFileDialog&)>& act)
    {
        const auto then = std::chrono::steady_clock::now();
        CHECK(dialog.open("Mp3 Files", act) == cancelled);
        return std::chrono::steady_clock::now() - then < std::chrono::seconds(30);
    }
};

}

TEST_CASE("A path that is typed into a share that does not answer is not taken, and the dialog goes on")
{
    ShareBeside s;
    bool isLeftOpen = false;
    {
        const HungShare hung(s.share.c_str());
        CHECK(s.endsSoon([&](QFileDialog& window) {
            window.setDirectory(QString::fromStdString(s.dialog.folder.path()));
            FileDialogHand hand;
            hand.type(s.share + "/song.mp3");
            static_cast<QDialog&>(window).accept();
            isLeftOpen = window.isVisible();
            hand.type("song.mp3");
            window.reject();
        }));
        CHECK(hung.waiting() <= 2); // one that was asked for the dialog, and the dialog's own thread
    }
    CHECK(isLeftOpen);
    CHECK(s.dialog.choose("Mp3 Files") == 0);
    CHECK(s.dialog.control.FileName() == s.dialog.song);
}

TEST_CASE("A path that was typed while its share did not answer can be chosen once it does")
{
    ShareBeside s;
    const Text song = s.share + "/song.wav";
    putFile(song, "");
    bool wasLocked = false;
    bool isFree = false;
    const int failure = s.dialog.open("Wav Files", [&](QFileDialog& window) {
        const auto* open = window.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open);
        {
            const HungShare hung(s.share.c_str());
            FileDialogHand().type(song);
            wasLocked = !open->isEnabled();
        }
        isFree = waitFor([&] { return open->isEnabled(); });
        isFree ? static_cast<QDialog&>(window).accept() : window.reject();
    });
    CHECK(wasLocked);
    CHECK(isFree);
    CHECK(failure == 0);
    CHECK(s.dialog.control.FileName() == song);
}

TEST_CASE("A folder that does not answer is not gone to, from its row or from its place at the side")
{
    ShareBeside s;
    const QString folder = QString::fromStdString(s.dialog.folder.path());
    struct Way {
        const char* part;
        int from; // the row that is the current one
        Qt::Key key;
    };
    for (const Way& way : {Way{"listView", 0, Qt::Key_Return}, Way{"sidebar", 0, Qt::Key_Down}}) {
        CAPTURE(Text(way.part));
        std::optional<HungShare> hung;
        QString stays;
        CHECK(s.endsSoon([&](QFileDialog& window) {
            window.setSidebarUrls({QUrl::fromLocalFile(folder), QUrl::fromLocalFile(folder + "/share")});
            window.setDirectory(folder);
            auto& view = *window.findChild<QAbstractItemView*>(way.part);
            const auto row = [&](int number) { return view.model()->index(number, 0, view.rootIndex()); };
            const auto& files =
                *window.findChild<QAbstractItemView*>("listView"); // which looks at the share, too
            CHECK(
                waitFor([&] { return row(0).isValid() && files.model()->rowCount(files.rootIndex()) > 0; }));
            view.setCurrentIndex(row(way.from));
            hung.emplace(s.share.c_str());
            QKeyEvent press(QEvent::KeyPress, way.key, Qt::NoModifier);
            QApplication::sendEvent(&view, &press);
            const QPoint at = view.visualRect(row(way.from + (way.key == Qt::Key_Down))).center();
            QMouseEvent click(QEvent::MouseButtonDblClick, at, view.viewport()->mapToGlobal(at),
                              Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(view.viewport(), &click);
            stays = window.directory().absolutePath();
            window.reject();
        }));
        CHECK(stays.toStdString() == s.dialog.folder.path());
    }
}

TEST_CASE("A dialog ends while a folder in what it shows does not answer")
{
    ShareBeside s;
    const HungShare hung(s.share.c_str());
    CHECK(s.endsSoon([&](QFileDialog& window) {
        window.setDirectory(QString::fromStdString(s.dialog.folder.path()));
        CHECK(waitFor([&] { return hung.waiting() == 1; })); // its thread has come to the share
        window.reject();
    }));
}

TEST_CASE("A dialog ends while a folder that it has seen does not answer any more")
{
    ShareBeside s;
    std::optional<HungShare> hung;
    CHECK(s.endsSoon([&](QFileDialog& window) {
        bool isSeen = false;
        const QObject asLongAsThat; // the dialog looks further
        QObject::connect(
            window.findChild<QFileSystemModel*>(), &QFileSystemModel::directoryLoaded, &asLongAsThat,
            [&](const QString& folder) { isSeen |= folder.toStdString() == s.dialog.folder.path(); });
        window.setDirectory(QString::fromStdString(s.dialog.folder.path()));
        CHECK(waitFor([&] { return isSeen; }));
        hung.emplace(s.share.c_str());
        putFile(s.dialog.folder / "new.mp3", ""); // for which its thread looks at them all again
        CHECK(waitFor([&] { return hung->waiting() == 1; }));
        window.reject();
    }));
}

TEST_CASE("A dialog that ends leaves no list of completions behind")
{
    Dialog dialog;
    putFile(dialog.folder / "sounds.wav", "");
    QPointer<QWidget> completions;
    const auto open = [&](QFileDialog& window) {
        window.setDirectory(QString::fromStdString(dialog.folder.path()));
        CHECK(waitFor([&] { // there are none before the folder is listed
            if (QApplication::activePopupWidget() == nullptr)
                FileDialogHand().type("so");
            return (completions = QApplication::activePopupWidget()) != nullptr;
        }));
        window.reject();
    };
    CHECK(dialog.open("Wav Files", open) == cancelled);
    CHECK(QApplication::activePopupWidget() == nullptr);
    CHECK(completions.isNull()); // a window that is hidden can be where keys go
}

TEST_CASE("A dialog goes when it has ended, whatever path was typed into it")
{
    for (const char* typed : {"", "so", "/", "/home/", "/usr/bin/"}) {
        CAPTURE(typed);
        Dialog dialog;
        QPointer<QFileDialog> shown;
        dialog.open("Wav Files", [&](QFileDialog& window) {
            shown = &window;
            bool isRootSeen = false;
            const QObject asLongAsThat;
            QObject::connect(window.findChild<QFileSystemModel*>(), &QFileSystemModel::directoryLoaded,
                             &asLongAsThat, [&](const QString& folder) { isRootSeen |= folder == "/"; });
            FileDialogHand().type(typed);
            CHECK((typed[0] != '/' || waitFor([&] { return isRootSeen; })));
            window.reject();
        });
        CHECK((shown.isNull() || !shown->windowHandle()));
        CHECK(waitFor([&] { return shown.isNull(); }, 20));
    }
}

TEST_CASE("A place that the library kept and that does not answer holds no dialog up")
{
    ShareBeside s;
    QSettings settings(QSettings::UserScope, "QtProject");
    for (const char* key : {"FileDialog/shortcuts", "FileDialog/history"}) {
        CAPTURE(key);
        const QVariant before = settings.value(key);
        settings.setValue(key, QStringList{QUrl::fromLocalFile(QString::fromStdString(s.share)).toString()});
        settings.sync();
        {
            const HungShare hung(s.share.c_str());
            CHECK(s.endsSoon([](QFileDialog& window) { window.reject(); }));
        }
        settings.setValue(key, before);
    }
}
