// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/error.h"

#include "program.h"
#include "toolkit/toolkit.h"

Error::Error(Program& program) :
    Form(program.platform().toolkit(), "Error", Border::dialog, {4215_tw, 1725_tw})
{
    setCaption("Error");
    theerror.setWordWrap(true);
    okbutton.Click.calls(*this, &Error::okbutton_Click);
}

void Error::okbutton_Click() { Hide(); }
