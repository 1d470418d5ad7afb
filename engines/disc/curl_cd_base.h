// SPDX-License-Identifier: GPL-3.0-or-later
// CDDB titles over the web.
#pragma once

#include "engines/disc/disc_contents.h"
#include "platform/cd_base.h"
#include "platform/part_notes.h"

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace disc
{

struct CddbAccess {
    // The CDDB's servers, asked in turn until one answers. Plain HTTP where an address says so, and only
    // there: anyone on the way reads along, and may answer in the server's place.
    std::vector<Text> addresses = {"https://gnudb.gnudb.org/~cddb/cddb.cgi"};

    // Where answers are kept, for the times when no server gives one.
    Text cacheFolder = {};
    std::shared_ptr<PartNotes> notes = std::make_shared<NoPartNotes>(); // a look-up may outlive the control

    // A service that gave no word for so long is silent: until it speaks again, a disc with a kept answer
    // waits no longer for it.
    std::chrono::milliseconds silence{3000};

    // The name of the reader's first drive; "" when there is none. It touches no drive.
    std::function<Text()> firstDrive = {};

    // The disc in that drive. Called on a worker that may outlive the control, so it holds what it needs.
    std::function<DiscContents()> disc = {};
};

std::unique_ptr<CdBase> makeCurlCdBase(CddbAccess access);

// Who asks, in the form of an e-mail address: the service wants one, and it shall tell nobody's login and no
// computer's name.
inline constexpr std::string_view nobody = "anonymous@localhost";

}
