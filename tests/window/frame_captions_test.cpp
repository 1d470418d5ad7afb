// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/disc_program.h"

#include <QGroupBox>
#include <doctest/doctest.h>

TEST_CASE("No frame of the workbench or the settings cuts its caption")
{
    DiscProgram p;
    for (Form* form : {static_cast<Form*>(&p.workbench), static_cast<Form*>(&p.settings)}) {
        const auto frames = form->page()->findChildren<QGroupBox*>();
        CHECK(frames.size() >= 9);
        for (const auto* frame : frames) {
            CAPTURE(frame->objectName().toStdString());
            CHECK(frame->fontMetrics().horizontalAdvance(frame->title()) < frame->width());
        }
    }
}
