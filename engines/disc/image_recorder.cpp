// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/image_recorder.h"

#include "engines/disc/disc_contents.h"
#include "files/errand.h"
#include "files/folders.h"
#include "files/output_file.h"
#include "platform/failure.h"
#include "platform/numbers.h"
#include "platform/paths.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <sys/stat.h>
#include <system_error>

namespace disc
{

namespace
{

constexpr std::int16_t imageRecorder = 2;
constexpr std::int64_t pieceBytes = 445 * sectorBytes; // about a megabyte

// "Disc YYYY-MM-DD HH.MM.SS", in the user's own time.
Text discName(std::time_t time)
{
    std::tm parts{};
    localtime_r(&time, &parts);
    char name[64];
    return {name, std::strftime(name, sizeof name, "Disc %Y-%m-%d %H.%M.%S", &parts)};
}

// "MM:SS:FF" (CDRWIN user's guide).
Text timeText(std::int64_t sector)
{
    const std::int64_t seconds = sector / sectorsPerSecond;
    return twoDigits(seconds / 60) + ':' + twoDigits(seconds % 60) + ':' +
           twoDigits(sector % sectorsPerSecond);
}

Text sheetText(const Text& soundName, const std::vector<CdSound>& tracks)
{
    Text sheet = "FILE \"" + soundName + "\" BINARY\n";
    std::int64_t start = 0;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        sheet += "  TRACK " + twoDigits(static_cast<std::int64_t>(i) + 1) + " AUDIO\n    INDEX 01 " +
                 timeText(start) + '\n';
        start += tracks[i].sectors();
    }
    return sheet;
}

std::int64_t soundBytes(const std::vector<CdSound>& tracks)
{
    std::int64_t sectors = 0;
    for (const auto& track : tracks)
        sectors += track.sectors();
    return sectors * sectorBytes;
}

// The two files of a disc in the making, by one name for all discs: what one leaves that loses its power, the
// next one finds.
class NewImage
{
public:
    NewImage(Text folder, std::int64_t bytes, PartNotes& notes) :
        folder_(std::move(folder)), notes_(notes), sound_(joined(folder_, "Disc in the making.bin"), notes),
        sheet_(joined(folder_, "Disc in the making.cue"), notes)
    {
        sound_.makeRoom(bytes);
    }

    // The disk keeps step, so that the end need not wait for it.
    void append(std::span<const std::byte> sectors)
    {
        sound_.append(sectors);
        sound_.startForce();
    }

    void finish(const std::vector<CdSound>& tracks);

private:
    Text pathOf(std::string_view ending, std::time_t time) const
    {
        return joined(folder_, discName(time)).append(ending);
    }
    bool isFree(std::time_t time) const;
    bool placed(const std::vector<CdSound>& tracks, std::time_t time);
    void writeSheet(const Text& text);
    void placeSheet(std::time_t time);

    Text folder_;
    PartNotes& notes_;
    std::time_t begun_ = std::time(nullptr);
    files::OutputFile sound_;
    files::OutputFile sheet_;
};

// Two discs of one second get names of different ones.
void NewImage::finish(const std::vector<CdSound>& tracks)
{
    sound_.force();
    std::time_t time = begun_;
    while (!isFree(time) || !placed(tracks, time))
        ++time;
    files::syncFolder(folder_);
}

bool NewImage::isFree(std::time_t time) const
{
    return !files::isFile(pathOf(".bin", time)) && !files::isFile(pathOf(".cue", time));
}

// Both files are whole before one of them has its name: a program that is killed between the two names has
// its next start give the other. The sheet comes last: whoever sees it finds a whole disc.
bool NewImage::placed(const std::vector<CdSound>& tracks, std::time_t time)
{
    const Text sound = pathOf(".bin", time);
    writeSheet(sheetText(Text(fileTitle(sound)), tracks));
    notes_.whole({{sound_.partPath(), sound}, {sheet_.partPath(), pathOf(".cue", time)}});
    if (!sound_.takeFreePlace(sound))
        return false;
    try {
        placeSheet(time);
    } catch (const Failure&) {
        unlink(sound.c_str());
        throw;
    }
    return true;
}

// The names of all times have one length, so that one sheet covers the other.
void NewImage::writeSheet(const Text& text)
{
    sheet_.write(std::as_bytes(std::span(text)), 0);
    sheet_.force();
}

void NewImage::placeSheet(std::time_t time)
{
    if (!sheet_.takeFreePlace(pathOf(".cue", time)))
        throw Failure(Trouble::pathOrFileAccess);
}

class ImageRun final : public WriteRun
{
public:
    // Without an image it goes through the writing and writes nothing.
    ImageRun(std::vector<CdSound> tracks, std::shared_ptr<NewImage> image) :
        tracks_(std::move(tracks)), image_(std::move(image)), bytes_(soundBytes(tracks_))
    {
    }

    void write(const WriteProgress& progress, const std::stop_token& stop) override;

private:
    void writeTrack(CdSound& track, const WriteProgress& progress, const std::stop_token& stop);

    std::vector<CdSound> tracks_;
    std::shared_ptr<NewImage> image_;
    std::int64_t bytes_;
    std::int64_t written_ = 0;
};

void ImageRun::write(const WriteProgress& progress, const std::stop_token& stop)
{
    for (auto& track : tracks_)
        writeTrack(track, progress, stop);
    if (image_ && !stop.stop_requested())
        image_->finish(tracks_);
}

// The last sector, and a track that is too short, are filled up with silence.
void ImageRun::writeTrack(CdSound& track, const WriteProgress& progress, const std::stop_token& stop)
{
    std::int64_t soundLeft = track.frames() * CdSound::frameBytes;
    std::vector<std::byte> piece;
    for (std::int64_t left = track.sectors() * sectorBytes; left > 0 && !stop.stop_requested();) {
        piece.assign(static_cast<std::size_t>(std::min(left, pieceBytes)), std::byte{});
        const auto sound = std::span(piece).first(static_cast<std::size_t>(std::min(soundLeft, pieceBytes)));
        if (track.read(sound) != sound.size())
            throw Failure{Trouble::endOfFile, track.path() + " is cut short."};
        soundLeft -= static_cast<std::int64_t>(sound.size());
        left -= static_cast<std::int64_t>(piece.size());
        if (image_)
            image_->append(piece);
        written_ += static_cast<std::int64_t>(piece.size());
        progress(static_cast<std::int16_t>(written_ * 100 / bytes_));
    }
}

void requireFolder(const Text& folder)
{
    const int error = mkdir(folder.c_str(), 0777) == 0 ? 0 : errno;
    if (error != 0 && !files::isFolder(folder))
        throw Failure{fileFailure(error).trouble(), "The folder " + folder + " cannot be made: " +
                                                        std::generic_category().message(error) + '.'};
}

class ImageRecorder final : public WriterDrive
{
public:
    ImageRecorder(DiscFolders folders, PartNotes& notes) : folders_(std::move(folders)), notes_(notes) {}

    Text name() const override { return "Disc image recorder"; }
    Text device() const override { return "disc images"; }
    std::int16_t type() const override { return imageRecorder; }
    bool hasWritableDisc() override { return true; }

    std::unique_ptr<WriteRun> prepare(std::vector<CdSound> tracks, const WriteSettings& settings) override
    {
        const std::int64_t bytes = soundBytes(tracks);
        if (bytes > std::int64_t{mostSectors} * sectorBytes)
            throw Failure{Trouble::diskFull, "The tracks are too long for a disc."};
        auto image = settings.simulate ? nullptr : newImage(bytes);
        return std::make_unique<ImageRun>(std::move(tracks), std::move(image));
    }

private:
    std::shared_ptr<NewImage> newImage(std::int64_t bytes)
    {
        const auto make = [folders = folders_, bytes, &notes = notes_] {
            const Text folder = folders.toWrite();
            requireFolder(folder);
            return std::make_shared<NewImage>(folder, bytes, notes);
        };
        return files::answerOrFailure<std::shared_ptr<NewImage>>(files::patienceForFiles, "discs", make);
    }

    DiscFolders folders_;
    PartNotes& notes_;
};

}

std::shared_ptr<WriterDrive> makeImageRecorder(DiscFolders folders, PartNotes& notes)
{
    return std::make_shared<ImageRecorder>(std::move(folders), notes);
}

}
