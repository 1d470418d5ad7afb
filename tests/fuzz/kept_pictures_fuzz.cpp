// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the kept pixels of the skin: the pictures in it are whole, and are read again as they were.
// The bytes get a sum that fits, or most would be turned away by it; those that begin with "!" have to pass
// as they are.
#include "toolkit/kept_pictures.h"

#include "platform/part_notes.h"
#include "tests/fuzz/input.h"

#include <QDataStream>
#include <QHashFunctions>
#include <QIODevice>

namespace
{

QByteArray fileOf(std::string_view input)
{
    if (input.starts_with('!'))
        return {input.data() + 1, static_cast<qsizetype>(input.size() - 1)};
    QByteArray sum;
    QDataStream(&sum, QIODevice::WriteOnly) << quint64(qHashBits(input.data(), input.size()));
    return sum.append(input.data(), static_cast<qsizetype>(input.size()));
}

}

// An input takes the same edges in every run.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    QHashSeed::setDeterministicGlobalSeed();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const QByteArray file = fileOf(asText(bytes, size));
    putFile(memory() / "skin-1", {file.constData(), static_cast<std::size_t>(file.size())});
    const KeptPictures kept(memory() / "skin-1", "b");
    const Pictures pictures = kept.read();
    for (const QImage& picture : pictures)
        require(!picture.isNull() && picture.format() == QImage::Format_ARGB32_Premultiplied);
    kept.write(pictures, NoPartNotes::instance());
    require(kept.read() == pictures, "it is not read as it was written");
    return 0;
}
