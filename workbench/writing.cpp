// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/error.h"
#include "platform/failure.h"
#include "platform/message_boxes.h"
#include "platform/numbers.h"
#include "program.h"
#include "workbench/mp3_encoder.h"

namespace
{

constexpr std::int16_t mostFilesOfADrop = 100;

}

// At most a hundred files of one drop. Asking for an item behind the last one fails, and that is the normal
// end.
void Mp3Encoder::EncWAVtoCDdragndrop_OLEDragDrop(const ctl::DroppedFiles& files)
{
    succeeds([&] {
        for (writeListIndex = 1; writeListIndex <= mostFilesOfADrop; ++writeListIndex)
            EncWAVtoCDdragndrop.AddItem(files.item(writeListIndex));
    });
}

void Mp3Encoder::EncWAVtoCDWrite_Click()
{
    if (EncWAVtoCDdragndrop.ListCount() == 0) {
        program_.tell("You must at least drag and drop one file into the box to write to the CD!");
        return;
    }
    if (!acceptRows())
        return;
    writeFailureText = "Can\u00B4t handle CD-recorder or unuseable media.";
    if (!discIsIn())
        return;
    if (CDWriter->Write() != 0)
        program_.tell("Can\u00B4t write audio track(s)!");
}

// The writer judges each file. The first one that it refuses stays in the list, selected.
bool Mp3Encoder::acceptRows()
{
    const std::int32_t count = EncWAVtoCDdragndrop.ListCount();
    for (writeListIndex = 0; writeListIndex < count; writeListIndex = roundToInteger16(writeListIndex + 1)) {
        if (CDWriter->AddTrack(EncWAVtoCDdragndrop.List(writeListIndex), 0) == 0)
            continue;
        const Text message =
            EncWAVtoCDdragndrop.List(writeListIndex) + " is not a valid .wav file (44kHz, 16Bit, Stereo)";
        program_.error().theerror.setCaption(message);
        EncWAVtoCDdragndrop.setSelected(writeListIndex, true);
        CDWriter->ClearTracks();
        program_.error().Show();
        return false;
    }
    return true;
}

bool Mp3Encoder::discIsIn()
{
    while (CDWriter->CheckMedia() != 0) {
        const auto answer = program_.platform().messageBoxes().show("Please insert a CD-R!", "No CD-R Found",
                                                                    MessageBoxes::Icon::none,
                                                                    MessageBoxes::Buttons::okCancel);
        if (answer == MessageBoxes::Answer::cancel)
            return false;
    }
    return true;
}

void Mp3Encoder::CDWriter_Progress(std::int16_t percent)
{
    ProgressBarWAVtoCD.setValue(static_cast<float>(percent));
}

void Mp3Encoder::CDWriter_Done(std::int16_t)
{
    ProgressBarWAVtoCD.setValue(0);
    program_.platform().messageBoxes().show("CD created!", "CD created!", MessageBoxes::Icon::none,
                                            MessageBoxes::Buttons::ok);
}
