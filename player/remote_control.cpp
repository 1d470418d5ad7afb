#include "player/remote_control.h"

#include "player/file_kind.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"

using Status = MediaRemote::Status;

RemoteControl::RemoteControl(Program& program) :
    program_(program), player_(program.startUp()), remote_(program.platform().makeMediaRemote()),
    tick_(player_, "RemoteControl", std::chrono::milliseconds(1))
{
    wire();
}

void RemoteControl::wire()
{
    tick_.Timer.calls([this] { remote_->show(shown()); });
    remote_->Play.calls([this] { play(); });
    remote_->Pause.calls([this] { pause(); });
    remote_->PlayPause.calls([this] { status() == Status::playing ? pause() : play(); });
    remote_->Stop.calls([this] { player_.Image2_Click(); });
    remote_->Next.calls([this] { program_.playListEditor().Nextimg1_Click(); });
    remote_->Previous.calls([this] { program_.playListEditor().Previmg1_Click(); });
    remote_->Raise.calls([this] { player_.Show(); });
    remote_->Quit.calls([this] { player_.closeVLMimg_Click(); });
}

// Play on a playing file would begin it again, which is not what a media key asks for.
void RemoteControl::play()
{
    if (status() != Status::playing)
        player_.Image1_Click();
}

void RemoteControl::pause()
{
    if (status() == Status::playing)
        player_.Image3_Click();
}

Status RemoteControl::status() const
{
    if (player_.mp3filename.Caption().empty())
        return Status::stopped;
    if (player_.paused_flag == 1)
        return Status::paused;
    return sounds() ? Status::playing : Status::stopped;
}

// The WAV engine does not tell whether it plays: Pause can be clicked from its start on, and the position
// tells its end.
bool RemoteControl::sounds() const
{
    if (player_.OpenSaveDialog1->FilterIndex() != kind::wav)
        return player_.Mp3Player->IsPlaying() != 0;
    return player_.Image3.Enabled() && player_.MMControl1->Position() < player_.MMControl1->Length();
}

MediaRemote::Shown RemoteControl::shown() const
{
    const bool wav = player_.OpenSaveDialog1->FilterIndex() == kind::wav;
    return {status(),
            player_.mp3filename.Caption(),
            player_.stitle.Caption(),
            player_.sartist.Caption(),
            player_.salbum.Caption(),
            wav ? player_.MMControl1->Length() : player_.Mp3Player->Length()};
}
