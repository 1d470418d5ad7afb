// Stand-ins until the real parts are taken in.
#include "platform/acd.h"
#include "platform/acd_write.h"
#include "platform/cd_base.h"
#include "platform/drives.h"
#include "platform/failure.h"
#include "platform/registry.h"
#include "platform/shell.h"
#include "platform/system/desktop.h"
#include <iostream>
namespace
{
struct PAcd : ACD {
    std::int16_t Init() override { return 0; }
    std::int16_t DriveCount() override { return 1; }
    Text DriveName(std::int16_t) const override { return "Disc image: none"; }
    void SelectDrive(std::int16_t) override {}
    std::int16_t TrackCount() override { return 0; }
    std::int32_t TrackLength(std::int16_t) override { return 0; }
    std::int16_t ReadTrack(std::int16_t, const Text&) override { return 1; }
    void Stop() override {}
};
struct PWr : ACDWRITE {
    std::int16_t Init() override { return 1; }
    std::int16_t DriveCount() override { return 0; }
    Text DriveName(std::int16_t) override { return ""; }
    void SelectDrive(std::int16_t) override {}
    std::int16_t WriterType() const override { return 0; }
    void SetWriterType(std::int16_t) override {}
    std::int16_t WriteSpeed() const override { return 1; }
    void setWriteSpeed(std::int16_t) override {}
    void setWriteSpeed(const Text&) override {}
    void setCloseDisc(bool) override {}
    void setSimulate(bool) override {}
    void setAutoEject(bool) override {}
    std::int16_t AddTrack(const Text&, std::int32_t) override { return 1; }
    void ClearTracks() override {}
    std::int16_t CheckMedia() override { return 1; }
    std::int16_t Write() override { return 1; }
};
struct PCd : CdBase {
    void setContactIdentity(const Text&) override {}
    Text DefaultDevice() const override { return ""; }
    void setDevice(const Text&) override {}
    void setTimeLimit(std::int32_t) override {}
    void setCommand(const Text&) override {}
    void Lookup() override {}
    Text DiscArtist() const override { return ""; }
    Text TrackTitle(std::int16_t) const override { return ""; }
};
}
std::unique_ptr<ACD> Desktop::makeACD() { return std::make_unique<PAcd>(); }
std::unique_ptr<ACDWRITE> Desktop::makeACDWRITE() { return std::make_unique<PWr>(); }
std::unique_ptr<CdBase> Desktop::makeCdBase() { return std::make_unique<PCd>(); }
