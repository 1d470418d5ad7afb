// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/patient_text_files.h"

#include "platform/out_of_memory.h"

namespace files
{

namespace
{

// One for all that is asked of a file: it is not written while an earlier writing may still end.
Text questionOf(const Text& path) { return "text " + path; }

// Everything that the disk is told, it is told at the end.
class PatientOutput final : public TextOutput
{
public:
    PatientOutput(Text question, std::shared_ptr<TextOutput> output, std::chrono::milliseconds patience) :
        question_(std::move(question)), output_(std::move(output)), patience_(patience)
    {
    }

    ~PatientOutput() override
    {
        if (output_)
            leavingOut([this] { remove(); });
    }

    void write(std::string_view bytes) override { *bytes_ += bytes; }

    void finish(std::uint64_t revision) override
    {
        const auto write = [output = output_, bytes = bytes_, revision] {
            output->write(*bytes);
            output->finish(revision);
            return true;
        };
        answerOrFailure<bool>(patience_, question_, write);
        output_.reset();
    }

private:
    // What was not finished is removed from the disk, which takes its time, too.
    void remove()
    {
        const auto last = std::make_shared<std::shared_ptr<TextOutput>>(std::move(output_));
        answerWithin<bool>(patience_, question_, [last] {
            last->reset();
            return true;
        });
    }

    Text question_;
    std::shared_ptr<TextOutput> output_;
    std::chrono::milliseconds patience_;
    std::shared_ptr<Text> bytes_ = std::make_shared<Text>();
};

// An output may be the last that needs the files that it came from.
std::shared_ptr<TextOutput> outputOf(const std::shared_ptr<TextFiles>& files, const Text& path)
{
    return {files->openForOutput(path).release(), [files](TextOutput* output) { delete output; }};
}

}

std::unique_ptr<TextOutput> PatientTextFiles::openForOutput(const Text& path)
{
    auto output = answerOrFailure<std::shared_ptr<TextOutput>>(
        patience_, questionOf(path), [files = files_, path] { return outputOf(files, path); });
    return std::make_unique<PatientOutput>(questionOf(path), std::move(output), patience_);
}

void PatientTextFiles::keepBackup(const Text& path, std::string_view bytes)
{
    answerWithin<bool>(patience_, questionOf(path + ".bak"), [files = files_, path, bytes = Text(bytes)] {
        files->keepBackup(path, bytes);
        return true;
    });
}

std::int64_t PatientTextFiles::length(const Text& path)
{
    return answerOrFailure<std::int64_t>(patience_, questionOf(path),
                                         [files = files_, path] { return files->length(path); });
}

Text PatientTextFiles::readWhole(const Text& path)
{
    return answerOrFailure<Text>(patience_, questionOf(path),
                                 [files = files_, path] { return files->readWhole(path); });
}

}
