// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/image_drive.h"

#include "engines/disc/image_file.h"
#include "engines/disc/image_layout.h"
#include "files/errand.h"
#include "files/folders.h"
#include "platform/failure.h"
#include "platform/paths.h"

#include <algorithm>
#include <compare>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <utility>

namespace disc
{

namespace
{

// Under 128 KB: the allocator has larger pieces mapped anew each time, which takes longer than to read them.
constexpr std::int32_t pieceSectors = 54;
constexpr std::size_t longestSheet = 1 << 20;
constexpr std::string_view sheetEnding = ".cue";

// What a file is told by, and whether it has changed.
struct Stamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t changedNs = 0;

    bool isSameFile(const Stamp& other) const
    {
        return inode != 0 && inode == other.inode && device == other.device;
    }
    bool operator==(const Stamp&) const = default;
};

// That of no file where there is none.
Stamp stampOf(const Text& path)
{
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return {};
    const std::int64_t seconds = status.st_mtim.tv_sec;
    return {status.st_dev, status.st_ino, status.st_size, seconds * 1'000'000'000 + status.st_mtim.tv_nsec};
}

// Nothing where it cannot be read; what is larger than any sheet is none.
std::optional<Text> sheetText(const Text& path)
{
    const auto file = ImageFile::open(path, CueSheet::Kind::binary);
    if (!file)
        return std::nullopt;
    const bool isSheet = file->bytes() <= static_cast<std::int64_t>(longestSheet);
    Text text(isSheet ? static_cast<std::size_t>(file->bytes()) : 0, '\0');
    text.resize(file->read(std::as_writable_bytes(std::span(text)), 0));
    return text;
}

Text withoutEnding(std::string_view title)
{
    return Text(title.substr(0, title.size() - sheetEnding.size()));
}

// The file of that name in the folder, also when its letters have another case.
Text foundIn(const Text& folder, std::string_view name)
{
    const Text exact = joined(folder, name);
    if (files::isFile(exact))
        return exact;
    for (const Text& each : files::namesIn(folder))
        if (equalWithoutCase(each, name) && files::isFile(joined(folder, each)))
            return joined(folder, each);
    return {};
}

Text withSeparatorsTurned(Text name)
{
    std::ranges::replace(name, '\\', pathSeparator);
    return name;
}

// A sheet is a stranger's: it shall have nothing read but what lies with it.
bool leadsAway(const Text& name)
{
    const Text turned = pathSeparator + withSeparatorsTurned(name) + pathSeparator;
    return name.front() == pathSeparator || turned.find("/../") != Text::npos;
}

// Also through links.
bool liesIn(const Text& folder, const Text& path)
{
    std::error_code error;
    const Text real = std::filesystem::canonical(path, error);
    if (error)
        return true; // there is none
    return real.starts_with(joined(Text(std::filesystem::canonical(folder, error)), ""));
}

// Sheets come from other systems and from folders that were moved: a path that leads nowhere from here is
// followed with its separators turned, and then only its last name is looked for beside the sheet.
Text filePath(const Text& folder, const Text& name)
{
    const Text turned = withSeparatorsTurned(name);
    for (const Text& each : {name, turned})
        if (const Text path = joined(folder, each); each.front() != pathSeparator && files::isFile(path))
            return path;
    const Text beside = foundIn(folder, fileTitle(turned));
    return beside.empty() ? joined(folder, name) : beside;
}

// What the files of an image say, as they were looked at.
struct ImageFiles {
    CueSheet sheet;
    std::vector<Text> files; // of the sheet
    ImageLayout layout;
    std::vector<Stamp> stamps;
};

// A file that was missing may appear under any of the names that it is looked for by: the folder tells.
std::vector<Stamp> stampsOf(const Text& sheetPath, const std::vector<Text>& files)
{
    std::vector<Stamp> all{stampOf(sheetPath), stampOf(files::folderOf(sheetPath))};
    for (const Text& file : files)
        all.push_back(stampOf(file));
    return all;
}

std::vector<std::int64_t> bytesOf(const ImageFiles& image)
{
    std::vector<std::int64_t> all;
    for (std::size_t i = 0; i < image.files.size(); ++i) {
        const auto file = ImageFile::open(image.files[i], image.sheet.files[i].kind);
        all.push_back(file ? file->bytes() : 0);
    }
    return all;
}

// Finds the files that the sheet names. Returns why they are none of this disc.
Text findFiles(ImageFiles& image, const Text& sheetPath)
{
    const Text folder = files::folderOf(sheetPath);
    Text trouble;
    for (const auto& file : image.sheet.files) {
        image.files.push_back(leadsAway(file.name) ? Text() : filePath(folder, file.name));
        if (image.files.back().empty() || !liesIn(folder, image.files.back()))
            trouble = "Its sheet names " + file.name + ", which does not lie in the sheet's folder.";
    }
    return trouble;
}

// Why the files are no disc.
Text lay(ImageFiles& image)
{
    auto layout = layoutOf(image.sheet, bytesOf(image));
    if (!layout)
        return "It is longer than any disc.";
    image.layout = std::move(*layout);
    return {};
}

ImageFiles imageOf(const Text& sheetPath)
{
    ImageFiles image;
    const auto text = sheetText(sheetPath);
    const auto sheet = cueSheetIn(text.value_or(""));
    image.sheet = sheet.value_or(CueSheet());
    Text trouble = text ? "It is no sheet of a disc that can be followed." : "Its sheet cannot be read.";
    if (sheet)
        trouble = findFiles(image, sheetPath);
    image.stamps = stampsOf(sheetPath, image.files);
    if (sheet && trouble.empty())
        trouble = lay(image);
    if (files::isFile(sheetPath))
        image.layout.contents.trouble = trouble;
    return image;
}

using SeenImage = std::shared_ptr<const ImageFiles>;

// The same again while no file has changed.
SeenImage lookedAt(const Text& sheetPath, const SeenImage& last)
{
    if (last && stampsOf(sheetPath, last->files) == last->stamps)
        return last;
    return std::make_shared<const ImageFiles>(imageOf(sheetPath));
}

class ImageDrive final : public ReaderDrive
{
public:
    explicit ImageDrive(Text sheetPath) : path_(std::move(sheetPath)) {}

    Text name() const override { return "Disc image: " + withoutEnding(fileTitle(path_)); }
    Text device() const override { return path_; }
    DiscContents contents() override;
    std::int32_t readTrack(std::int16_t track, TrackSink& sink, const std::stop_token& stop) override;
    bool readsFrom(const Text& path) const override;

private:
    void readExtent(const SectorExtent& extent, TrackSink& sink, const std::stop_token& stop) const;

    Text path_;
    SeenImage image_ = std::make_shared<const ImageFiles>();
};

// The part of `extent` that lies from sector `from` up to `to` of the disc.
SectorExtent cutTo(SectorExtent extent, std::int32_t from, std::int32_t to)
{
    const std::int32_t skipped = std::max(from - extent.start, 0);
    extent.offset += std::int64_t{skipped} * extent.bytesOfSector;
    extent.start += skipped;
    extent.sectors = std::min(extent.sectors - skipped, to - extent.start);
    return extent;
}

// Data beside the sound of each sector is left out.
void keepSound(std::vector<std::byte>& sectors, std::size_t bytesOfSector)
{
    const std::size_t count = sectors.size() / bytesOfSector;
    for (std::size_t i = 1; i < count; ++i)
        std::copy_n(sectors.begin() + static_cast<std::ptrdiff_t>(i * bytesOfSector), sectorBytes,
                    sectors.begin() + static_cast<std::ptrdiff_t>(i * sectorBytes));
    sectors.resize(count * sectorBytes);
}

std::vector<std::byte> silenceOf(const SectorExtent& extent)
{
    return std::vector<std::byte>(static_cast<std::size_t>(extent.sectors) * sectorBytes);
}

// The last sector is filled up with silence where the file ends within it.
std::vector<std::byte> soundOf(const SectorExtent& extent, ImageFile& file)
{
    const auto bytesOfSector = static_cast<std::size_t>(extent.bytesOfSector);
    std::vector<std::byte> sectors(static_cast<std::size_t>(extent.sectors) * bytesOfSector);
    if (file.read(sectors, extent.offset) + bytesOfSector <= sectors.size())
        throw Failure{Trouble::endOfFile, "The disc image is cut short."};
    if (bytesOfSector != sectorBytes)
        keepSound(sectors, bytesOfSector);
    return sectors;
}

// The window waits for it.
DiscContents ImageDrive::contents()
{
    const auto look = [path = path_, last = image_] { return lookedAt(path, last); };
    const auto now = files::answerWithin<SeenImage>(files::patienceForFiles, "disc " + path_, look);
    if (!now)
        return {{}, 0, files::noAnswer};
    image_ = *now;
    return image_->layout.contents;
}

std::int32_t ImageDrive::readTrack(std::int16_t track, TrackSink& sink, const std::stop_token& stop)
{
    const SeenImage listed = std::exchange(image_, lookedAt(path_, image_));
    if (image_->layout != listed->layout)
        throw Failure{Trouble::deviceUnavailable, "The disc image has changed."};
    const DiscTrack& whole = image_->layout.contents.tracks.at(static_cast<std::size_t>(track - 1));
    for (const SectorExtent& extent : image_->layout.extents) {
        const SectorExtent part = cutTo(extent, whole.start, whole.start + whole.sectors);
        if (part.sectors > 0)
            readExtent(part, sink, stop);
    }
    return 0;
}

// Data sectors between tracks are silent, as they are for a player.
void ImageDrive::readExtent(const SectorExtent& extent, TrackSink& sink, const std::stop_token& stop) const
{
    const bool isSound = extent.file && extent.isAudio;
    const auto file =
        isSound ? ImageFile::open(image_->files[*extent.file], image_->sheet.files[*extent.file].kind)
                : nullptr;
    if (isSound && !file)
        throw Failure{Trouble::fileNotFound, image_->files[*extent.file] + " cannot be read."};
    for (std::int32_t at = extent.start; at < extent.end() && !stop.stop_requested(); at += pieceSectors) {
        const SectorExtent piece = cutTo(extent, at, at + pieceSectors);
        sink.take(file ? soundOf(piece, *file) : silenceOf(piece));
    }
}

bool ImageDrive::readsFrom(const Text& path) const
{
    const Stamp stamp = stampOf(path);
    const auto isIt = [&](const Text& file) { return stampOf(file).isSameFile(stamp); };
    return isIt(path_) || std::ranges::any_of(image_->files, isIt);
}

struct FoundSheet {
    Text path;
    Stamp stamp;
};

bool isSheetName(const Text& name)
{
    return name.size() > sheetEnding.size() && name.front() != '.' &&
           equalWithoutCase(name.substr(name.size() - sheetEnding.size()), sheetEnding);
}

// Both folders may be one.
void addSheets(std::vector<FoundSheet>& sheets, const Text& folder)
{
    for (const Text& name : files::namesIn(folder)) {
        const Text path = joined(folder, name);
        const Stamp stamp = stampOf(path);
        const bool isKnown =
            std::ranges::any_of(sheets, [&](const FoundSheet& each) { return each.stamp.isSameFile(stamp); });
        if (isSheetName(name) && files::isFile(path) && !isKnown)
            sheets.push_back({path, stamp});
    }
}

}

std::shared_ptr<ReaderDrive> makeImageDrive(const Text& sheetPath)
{
    return std::make_shared<ImageDrive>(sheetPath);
}

ListReaders imagesIn(DiscFolders folders)
{
    return [folders = std::move(folders)] {
        std::vector<FoundSheet> sheets;
        for (const Text& folder : folders.toRead())
            addSheets(sheets, folder);
        std::ranges::sort(
            sheets, {}, [](const FoundSheet& sheet) { return std::pair(sheet.stamp.changedNs, sheet.path); });
        std::vector<std::shared_ptr<ReaderDrive>> drives;
        for (const FoundSheet& sheet : sheets)
            drives.push_back(makeImageDrive(sheet.path));
        return drives;
    };
}

}
