// SPDX-License-Identifier: GPL-3.0-or-later
// What the disc reader needs of one drive, real or a disc image.
#pragma once

#include "engines/disc/disc_contents.h"
#include "platform/text.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

namespace disc
{

// Takes the sound that a drive reads.
class TrackSink
{
public:
    virtual ~TrackSink() = default;

    // 16-bit little-endian samples, left and right in turn, as they lie on the disc. In pieces of a size that
    // suits the drive; about a megabyte is quick, and one sector will do. Waits while the disk is slower than
    // the drive, but not after a stop.
    virtual void take(std::vector<std::byte> samples) = 0;
};

// Never used by two threads at the same time, but by several in turn. Holds no device open between calls.
class ReaderDrive
{
public:
    virtual ~ReaderDrive() = default;

    virtual Text name() const = 0;   // as the user sees it: "Vendor Model (/dev/sr0)"
    virtual Text device() const = 0; // what no two drives share, and a writer on the same device has too

    // The disc that is in the drive now; empty without one. Reads it anew only when it may have changed since
    // the last call: the window asks for each track's length. Fails never.
    virtual DiscContents contents() = 0;

    // Reads a whole audio track of the last `contents`, sector for sector; on a worker thread. Returns how
    // many sectors could not be read and are silent. Returns early soon after a stop. Fails with the reason,
    // as a person should read it.
    virtual std::int32_t readTrack(std::int16_t track, TrackSink& sink, const std::stop_token& stop) = 0;

    // True for a file that this drive reads from: no track may be copied over it.
    virtual bool readsFrom(const Text&) const { return false; }
};

// The drives of one kind, as they are now. Touches no disc: a drive may be in use.
using ListReaders = std::function<std::vector<std::shared_ptr<ReaderDrive>>()>;

}
