// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"
#include "platform/numbers.h"
#include "platform/paths.h"
#include "platform/pump.h"
#include "platform/text_files.h"
#include "player/start_up.h"
#include "playlist/list_settings.h"
#include "playlist/play_list_editor.h"
#include "playlist/playlist_format.h"
#include "program.h"

#include <utility>

namespace
{

constexpr const char* listFilter = "Velmora Playlist|*.vlp|M3U Playlists|*.m3u|All Files|*.*";

// The output can be missing in a stretch that skips failures: then each line fails for itself.
void writeLine(TextOutput* output, const Text& line)
{
    if (!output)
        throw Failure(Trouble::pathOrFileAccess);
    output->write(line + Text(lineEnd));
}

}

void PlayListEditor::SetProperties1()
{
    OpenSaveDialogP->setInitialName("");
    OpenSaveDialogP->setDialogTitle("Select a playlist");
    OpenSaveDialogP->setFilter(listFilter);
}

void PlayListEditor::SetProperties2()
{
    OpenSaveDialogP->setInitialName("");
    OpenSaveDialogP->setDialogTitle("Select .wav/.mp3 files to add to the playlist");
    OpenSaveDialogP->setFilter("Mp3 Files|*.mp3|Wav Files|*.wav");
}

void PlayListEditor::SetProperties3()
{
    OpenSaveDialogP->setInitialName("");
    OpenSaveDialogP->setDialogTitle("Enter a filename");
    OpenSaveDialogP->setFilter(listFilter);
}

void PlayListEditor::GoDoNew()
{
    PlayListFileName.setText("");
    PlayListLB.Clear();
}

void PlayListEditor::GoDoClose() { GoDoNew(); }

void PlayListEditor::SplitListText(const Text& text, const Text& delimiter)
{
    SplitResult = splitListText(text, delimiter);
}

// A file that cannot be read leaves the text read before it, and the rows are built from that once more. A
// text without any line has no last line to stop at: the window stands still for good.
void PlayListEditor::readListFile(const Text& path)
{
    succeeds([&] { ListFileText = program_.platform().textFiles().readWhole(path); });
    SplitListText(ListFileText, Text(lineEnd));
    ListLines = std::exchange(SplitResult, std::nullopt);
    PlayListLB.Clear();
    if (!ListLines)
        program_.platform().pump().standStill();
    else
        addRows(*std::exchange(ListLines, std::vector<Text>()));
}

// The rows take the lines over: of a million there shall be no second copy.
void PlayListEditor::addRows(std::vector<Text> lines)
{
    for (auto& line : lines)
        if (isRow(line))
            PlayListLB.AddItem(std::move(line));
}

void PlayListEditor::GoDoOpen()
{
    const bool prepared = program_.reporting([this] {
        OpenSaveDialogP->setFlags(4112);
        OpenSaveDialogP->setCancelError(true);
        SetProperties1();
    });
    if (!prepared || !succeeds([this] { OpenSaveDialogP->ShowOpen(); }))
        return;
    PlayListFileName.setText(OpenSaveDialogP->FileName());
    readListFile(PlayListFileName.Text());
    NamedListActive = true;
}

void PlayListEditor::GoDoSave()
{
    NamedListActive = true;
    if (PlayListFileName.Text().empty())
        saveThroughDialog();
    else
        saveDirectly(PlayListFileName.Text());
}

void PlayListEditor::GoDoSaveAs()
{
    NamedListActive = true;
    saveThroughDialog();
}

// The format follows the name. A failure is handled nowhere.
void PlayListEditor::saveDirectly(const Text& name)
{
    const bool m3u = isM3uName(name);
    const auto output = program_.platform().textFiles().openForOutput(name);
    if (m3u)
        writeLine(output.get(), m3uHeader);
    const std::int32_t count = PlayListLB.ListCount();
    for (std::int32_t row = 0; row < count; ++row) {
        if (m3u) {
            writeLine(output.get(), m3uInformation(row));
            Mp3Player2->Close();
        }
        writeLine(output.get(), PlayListLB.List(row));
    }
    output->finish();
}

// The format follows the filter. What fails after the dialog is left out, and the window shows the name all
// the same.
void PlayListEditor::saveThroughDialog()
{
    const bool prepared = program_.reporting([this] {
        OpenSaveDialogP->setFlags(23);
        SetProperties3();
    });
    if (!prepared || !succeeds([this] { OpenSaveDialogP->ShowSave(); }))
        return;
    const Text name = listFileName(OpenSaveDialogP->FileName(), OpenSaveDialogP->FilterIndex());
    std::unique_ptr<TextOutput> output;
    succeeds([&] { output = program_.platform().textFiles().openForOutput(name); });
    if (OpenSaveDialogP->FilterIndex() == listFilterM3u)
        succeeds([&] { writeLine(output.get(), m3uHeader); });
    const std::int32_t count = PlayListLB.ListCount();
    for (std::int32_t row = 0; row < count; ++row) {
        if (OpenSaveDialogP->FilterIndex() == listFilterM3u)
            skipping([&] { writeLine(output.get(), m3uInformation(row)); }, [this] { Mp3Player2->Close(); });
        succeeds([&] { writeLine(output.get(), PlayListLB.List(row)); });
    }
    if (output)
        succeeds([&] { output->finish(); });
    PlayListFileName.setText(name);
}

// The line that other players read before the row's own. The engine keeps trying until it has the file open,
// and still has it when this returns.
Text PlayListEditor::m3uInformation(std::int32_t row)
{
    while (Mp3Player2->Open(PlayListLB.List(row), "") != 0)
        program_.platform().pump().turn();
    const std::int32_t length = Mp3Player2->Length();
    const Text artist = Mp3Player2->Artist();
    const Text title = Mp3Player2->Title();
    return m3uInformationLine(length, artist, title);
}

void PlayListEditor::GoDoAddSongs()
{
    const bool prepared = program_.reporting([this] {
        setFolders();
        OpenSaveDialogP->setFilterIndex(toInteger16(
            program_.startUp().GetFromINI(ini::section, ini::fileType, "1", AppFolder + ini::file)));
        OpenSaveDialogP->setFlags(528912);
        OpenSaveDialogP->setCancelError(true);
        SetProperties2();
    });
    if (!prepared || !succeeds([this] { OpenSaveDialogP->ShowOpen(); }))
        return;
    skipping([this] { addRows(); },
             [this] {
                 program_.startUp().AddToINI(ini::section, ini::fileType,
                                             textOf(OpenSaveDialogP->FilterIndex()), AppFolder + ini::file);
             });
    NamedListActive = false;
}

void PlayListEditor::addRows()
{
    Text folder;
    std::vector<Text> names;
    std::int32_t count = 0;
    OpenSaveDialogP->GetFileList(folder, names, count);
    for (std::int32_t i = 1; i <= count; ++i) {
        const Text& name = names[static_cast<std::size_t>(i)];
        PlayListLB.AddItem(name.starts_with(folder) ? name : joined(folder, name));
    }
}
