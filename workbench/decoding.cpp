// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/numbers.h"
#include "platform/paths.h"
#include "platform/pump.h"
#include "program.h"
#include "workbench/file_names.h"
#include "workbench/mp3_encoder.h"

void Mp3Encoder::Command3_Click()
{
    const std::int32_t count = File2.ListCount();
    for (std::int32_t row = 0; row < count; ++row)
        if (File2.Selected(row))
            decode(File2.List(row));
}

void Mp3Encoder::decode(const Text& file)
{
    decodeFinished = 0;
    decodeInputPath = joined(File2.Path(), file);
    filename22.setText(file);
    filename22.setSelStart(static_cast<std::ptrdiff_t>(characterCount(file)) - 3);
    filename22.setSelLength(3);
    filename22.setSelText("wav");
    const Text output = joined(outputdir2.Caption(), filename22.Text());
    txtEncNowDec.setText(filename22.Text());
    Mp3Decoder->Open(decodeInputPath, output);
    Mp3Decoder->Play();
    while (decodeFinished != 1)
        program_.platform().pump().turn();
}

void Mp3Encoder::Mp3Decoder_Progress(std::int32_t position)
{
    if (Mp3Decoder->DecodeLength() > 0)
        ProgressBarDec.setValue(percentOf(position, Mp3Decoder->DecodeLength()));
    decodePosition = textOf(position);
}

// Unlike the encoder, the engine is closed after each file.
void Mp3Encoder::Mp3Decoder_Done()
{
    txtEncNowDec.setText("");
    ProgressBarDec.setValue(0);
    Mp3Decoder->Close();
    decodeFinished = 1;
}
