// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/simulated_drive/device_requests.h"

#include "tests/simulated_drive/commands.h"
#include "tests/simulated_drive/medium.h"

#include <linux/cdrom.h>
#include <linux/fs.h>
#include <scsi/scsi.h>
#include <scsi/sg.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace simulated
{

namespace
{

constexpr std::size_t senseBytes = 18;

int failed(int error)
{
    errno = error;
    return -1;
}

// In the fixed format (SPC-3).
void writeSense(const Sense& sense, std::span<std::uint8_t> to)
{
    std::array<std::uint8_t, senseBytes> bytes{};
    bytes[0] = 0x70;
    bytes[2] = sense.key;
    bytes[7] = senseBytes - 8;
    bytes[12] = sense.code;
    bytes[13] = sense.qualifier;
    std::copy_n(bytes.begin(), std::min(to.size(), bytes.size()), to.begin());
}

bool isGone(const Opened& drive)
{
    const Lock lock(*drive.state);
    return drive.state->isGone;
}

int sendCommand(const Opened& drive, sg_io_hdr_t& header)
{
    constexpr unsigned char checkCondition = 2;
    if (header.interface_id != 'S')
        return failed(ENOSYS);
    header.status = header.masked_status = header.sb_len_wr = 0;
    header.host_status = header.driver_status = 0;
    header.resid = 0;
    try {
        const std::span data(static_cast<std::uint8_t*>(header.dxferp), header.dxferp ? header.dxfer_len : 0);
        const auto came = carryOut(*drive.state, drive.number, {header.cmdp, header.cmd_len}, data);
        if (header.dxfer_direction == SG_DXFER_FROM_DEV)
            header.resid = static_cast<int>(header.dxfer_len - came);
    } catch (const Sense& sense) {
        header.status = checkCondition;
        header.masked_status = checkCondition >> 1;
        header.driver_status = 8; // there is sense data
        header.sb_len_wr = static_cast<unsigned char>(std::min<std::size_t>(header.mx_sb_len, senseBytes));
        if (header.sbp)
            writeSense(sense, {header.sbp, header.sb_len_wr});
    }
    return 0;
}

int sendPacket(const Opened& drive, cdrom_generic_command& packet)
{
    try {
        carryOut(*drive.state, drive.number, packet.cmd, {packet.buffer, packet.buffer ? packet.buflen : 0});
        return 0;
    } catch (const Sense& sense) {
        if (packet.sense)
            writeSense(sense, {reinterpret_cast<std::uint8_t*>(packet.sense), sizeof *packet.sense});
        return failed(EIO);
    }
}

// The system's own command; whether it was carried out.
bool carriedOut(const Opened& drive, std::array<std::uint8_t, 12> command, std::span<std::uint8_t> data)
{
    try {
        carryOut(*drive.state, drive.number, command, data);
        return true;
    } catch (const Sense&) {
        return false;
    }
}

// The system hears of a new medium itself, and tells programs only that there is one.
bool isReady(const Opened& drive) { return carriedOut(drive, {}, {}) || carriedOut(drive, {}, {}); }

int driveStatus(const Opened& drive)
{
    if (isReady(drive))
        return CDS_DISC_OK;
    const Lock lock(*drive.state);
    return drive.state->trayIsOpen ? CDS_TRAY_OPEN : CDS_NO_DISC;
}

int capabilities(const Opened& drive)
{
    const Lock lock(*drive.state);
    const int writing = drive.state->canWrite ? CDC_CD_R | CDC_CD_RW : 0;
    return CDC_CLOSE_TRAY | CDC_OPEN_TRAY | CDC_LOCK | CDC_SELECT_SPEED | CDC_MULTI_SESSION |
           CDC_MEDIA_CHANGED | CDC_PLAY_AUDIO | CDC_RESET | CDC_DRIVE_STATUS | CDC_GENERIC_PACKET | writing;
}

using Contents = std::array<std::uint8_t, 804>;

bool readContents(const Opened& drive, std::uint8_t format, Contents& contents)
{
    const auto size = static_cast<std::uint8_t>(contents.size() >> 8);
    return isReady(drive) &&
           carriedOut(drive,
                      {0x43, 2, format, 0, 0, 0, 0, size, static_cast<std::uint8_t>(contents.size() & 0xFF)},
                      contents);
}

int contentsHeader(const Opened& drive, cdrom_tochdr& header)
{
    Contents contents{};
    if (!readContents(drive, 0, contents))
        return failed(EIO);
    header.cdth_trk0 = contents[2];
    header.cdth_trk1 = contents[3];
    return 0;
}

void setAddress(cdrom_addr& address, std::uint8_t format, const std::uint8_t* time)
{
    if (format == CDROM_MSF)
        address.msf = {time[0], time[1], time[2]};
    else
        address.lba = (time[0] * 60 + time[1]) * 75 + time[2] - pregap;
}

int contentsEntry(const Opened& drive, cdrom_tocentry& entry)
{
    Contents contents{};
    if (!readContents(drive, 0, contents))
        return failed(EIO);
    const std::size_t end = static_cast<std::size_t>(contents[0] << 8 | contents[1]) + 2;
    for (std::size_t at = 4; at + 8 <= end; at += 8) {
        if (contents[at + 2] != entry.cdte_track)
            continue;
        entry.cdte_adr = static_cast<std::uint8_t>(contents[at + 1] >> 4);
        entry.cdte_ctrl = static_cast<std::uint8_t>(contents[at + 1] & 15);
        entry.cdte_datamode = 0;
        setAddress(entry.cdte_addr, entry.cdte_format, &contents[at + 5]);
        return 0;
    }
    return failed(EINVAL);
}

int lastSession(const Opened& drive, cdrom_multisession& session)
{
    Contents contents{};
    if (!readContents(drive, 1, contents))
        return failed(EIO);
    session.xa_flag = contents[3] > 1;
    setAddress(session.addr, session.addr_format, &contents[9]);
    return 0;
}

int moveTray(const Opened& drive, bool opens)
{
    const std::uint8_t how = opens ? 2 : 3;
    return carriedOut(drive, {0x1B, 0, 0, 0, how}, {}) ? 0 : failed(EIO);
}

int lockTray(const Opened& drive, bool locks)
{
    return carriedOut(drive, {0x1E, 0, 0, 0, static_cast<std::uint8_t>(locks)}, {}) ? 0 : failed(EIO);
}

int scsiAddress(const Opened& drive, void* argument)
{
    const std::uint32_t address[] = {static_cast<std::uint32_t>(drive.number), 0};
    std::memcpy(argument, address, sizeof address);
    return 0;
}

int busNumber(const Opened& drive, void* argument)
{
    *static_cast<int*>(argument) = drive.number;
    return 0;
}

template <typename Argument>
Argument& as(void* argument)
{
    return *static_cast<Argument*>(argument);
}

}

int answerRequest(const Opened& drive, unsigned long request, void* argument)
{
    if (isGone(drive))
        return failed(ENODEV);
    switch (request) {
    case SG_IO:
        return sendCommand(drive, as<sg_io_hdr_t>(argument));
    case CDROM_SEND_PACKET:
        return sendPacket(drive, as<cdrom_generic_command>(argument));
    case CDROM_DRIVE_STATUS:
        return driveStatus(drive);
    case CDROM_GET_CAPABILITY:
        return capabilities(drive);
    case CDROMREADTOCHDR:
        return contentsHeader(drive, as<cdrom_tochdr>(argument));
    case CDROMREADTOCENTRY:
        return contentsEntry(drive, as<cdrom_tocentry>(argument));
    case CDROMMULTISESSION:
        return lastSession(drive, as<cdrom_multisession>(argument));
    case CDROMEJECT:
        return moveTray(drive, true);
    case CDROMCLOSETRAY:
        return moveTray(drive, false);
    case CDROM_LOCKDOOR:
        return lockTray(drive, argument != nullptr);
    case CDROM_SELECT_SPEED:
        return 0;
    case SCSI_IOCTL_GET_IDLUN:
        return scsiAddress(drive, argument);
    case SCSI_IOCTL_GET_BUS_NUMBER:
        return busNumber(drive, argument);
    default:
        return failed(ENOTTY);
    }
}

}
