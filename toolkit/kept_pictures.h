// SPDX-License-Identifier: GPL-3.0-or-later
// Painted pictures, kept as pixels from run to run: reading the vector artwork is a tenth of the start. For
// the toolkit's own sources.
#pragma once

#include "platform/text.h"

#include <QHash>
#include <QImage>
#include <QString>

class PartNotes;

using Pictures = QHash<QString, QImage>; // premultiplied ARGB of 32 bits, by name

class KeptPictures
{
public:
    // In a file of that path, which only the build `build` can use.
    KeptPictures(Text path, Text build) : path_(std::move(path)), build_(std::move(build)) {}

    // None where the file is missing, damaged, or of another build.
    Pictures read() const;

    // For worker threads: it waits for the disk.
    void write(const Pictures& pictures, PartNotes& notes) const;

private:
    QByteArray packed(const Pictures& pictures) const;

    Text path_;
    Text build_;
};
