// SPDX-License-Identifier: Apache-2.0
// The SDR repository: one FRU device locator for each device of the device table, so that clients find the
// devices by themselves. Made anew from the controller's records for every request: what the FRU service
// changes is seen at once.
#ifndef IPMI_SIM_SDR_REPOSITORY_H
#define IPMI_SIM_SDR_REPOSITORY_H

#include <vector>

#include "lib_fru_types.h"

struct SDR_S
{
    u16 usRecordID;
    std::vector<u8> vecBytes; // header and body, as Get SDR returns them
};

/*
 * The locators in table order. A device whose SDR in the cache is a FRU device locator of its own is served
 * with that one; for any other, one is made from the device record. Record IDs are the table's; an entry
 * whose ID cannot be used (0x0000, 0xFFFF or already taken) gets a free one. Entries without a device record
 * are left out.
 */
std::vector<SDR_S> ListSdrs();

class SDR_REPOSITORY
{
  public:
    // Answers Get SDR Repository Info (0x20), Allocation Info (0x21), Reserve (0x22), Get SDR (0x23) and Get
    // SDR Repository Time (0x28); any
    // other command gets 0xC1, the writing ones among them. Arguments and result as for AnswerFruRequest().
    u32 Answer(u8 ucCommand, const u8 *pucReq, u32 uiReqLen, u32 uiRoom, u8 *pucRes);

  private:
    std::vector<u8> Respond(u8 ucCommand, const u8 *pucReq, u32 uiReqLen, u32 uiRoom);
    std::vector<u8> GetSdr(const std::vector<SDR_S> &vecSdrs, const u8 *pucReq, u32 uiReqLen,
                           u32 uiRoom) const;
    void NoteChange(const std::vector<SDR_S> &vecSdrs);

    std::vector<u8> m_vecLastSeen; // all records' bytes, one after the other
    u32 m_uiChangedAt = 0U;        // when they last differed, seconds of Unix time
    u16 m_usReservation = 0U;
    bool m_bReserved = false;
};

#endif
