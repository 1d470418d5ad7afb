// SPDX-License-Identifier: GPL-3.0-or-later
// A recorder that libburn holds. For worker threads: each call waits as long as the recorder takes.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <memory>

namespace burn
{
struct burn_drive;
}

namespace disc
{

class BurnRecorder
{
public:
    // Takes hold of the recorder, closing its tray: nobody else can use it meanwhile. Fails with the reason.
    explicit BurnRecorder(const Text& device);
    ~BurnRecorder();
    BurnRecorder(const BurnRecorder&) = delete;
    BurnRecorder& operator=(const BurnRecorder&) = delete;

    burn::burn_drive* drive() const;

    bool hasWritableDisc() const;
    bool hasBlankDisc() const;
    bool canSimulate() const;

    std::int32_t freeSectors() const;
    int tracksOnDisc() const;

    // Opens the tray when the recorder is let go.
    void ejectAtTheEnd();

    // What the library complained of since it was last asked, in its own words; `otherwise` without that.
    static Text complaint(const Text& otherwise);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}
