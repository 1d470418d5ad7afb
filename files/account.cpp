// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/account.h"

#include "files/errand.h"

#include <pwd.h>
#include <unistd.h>

#include <array>

namespace files
{

namespace
{

Account askDatabase()
{
    std::array<char, 16 * 1024> buffer;
    passwd entry;
    passwd* found = nullptr;
    getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
    return found ? Account{found->pw_name, found->pw_dir} : Account{};
}

}

Account accountOfUser()
{
    return answerWithin<Account>(patienceForLists, "account", askDatabase).value_or(Account{});
}

}
