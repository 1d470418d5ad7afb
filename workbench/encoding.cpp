// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/numbers.h"
#include "platform/paths.h"
#include "platform/pump.h"
#include "program.h"
#include "workbench/file_names.h"
#include "workbench/mp3_encoder.h"

// The selection is read at each row, so that a change made while an earlier file runs counts for later ones.
void Mp3Encoder::StartEncoding_Click()
{
    const std::int32_t count = File1.ListCount();
    for (std::int32_t row = 0; row < count; ++row)
        if (File1.Selected(row))
            encode(File1.List(row));
}

// The last three characters of the name are replaced, whatever they are.
void Mp3Encoder::encode(const Text& file)
{
    encodeFinished = 0;
    encodeInputPath = joined(File1.Path(), file);
    filename2.setText(file);
    filename2.setSelStart(static_cast<std::ptrdiff_t>(characterCount(file)) - 3);
    filename2.setSelLength(3);
    filename2.setSelText("mp3");
    const Text output = joined(outputdir.Caption(), filename2.Text());
    txtEncNowEnc.setText(filename2.Text());
    Mp3Encoder1->Open(encodeInputPath, output);
    Mp3Encoder1->Start();
    while (encodeFinished != 1)
        program_.platform().pump().turn();
}

void Mp3Encoder::Mp3Encoder1_Progress(std::int32_t position)
{
    if (Mp3Encoder1->Length() > 0)
        ProgressBarEnc.setValue(percentOf(position, Mp3Encoder1->Length()));
    encodePosition = textOf(position);
}

void Mp3Encoder::Mp3Encoder1_Done()
{
    txtEncNowEnc.setText("");
    ProgressBarEnc.setValue(0);
    encodeFinished = 1;
}
