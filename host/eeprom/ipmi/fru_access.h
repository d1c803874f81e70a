// SPDX-License-Identifier: Apache-2.0
// A FRU behind somebody else's controller, by the three commands that IPMI has for it. What carries the commands is
// the caller's.
#ifndef BMCHOST_EEPROM_IPMI_FRU_ACCESS_H
#define BMCHOST_EEPROM_IPMI_FRU_ACCESS_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "bmc_types.h"

namespace ipmi {

// What came back for one command.
struct ANSWER_S
{
    bool bCame = false;      // false: nothing came, and there is no session any more
    bool bBrokeOff = false;  // there was one until now: a new one may do
    bool bDenied = false;    // no session, for the controller does not let this user in
    u8 ucCompletion = 0;     // the completion code
    std::vector<u8> vecData; // what stands behind it
    std::string strWhy;      // why nothing came
};

struct LINK_S
{
    // One command of the Storage function, in a session that is begun when there is none.
    std::function<ANSWER_S(u8 ucCommand, const std::vector<u8> &vecData)> fnAsk;
    std::function<void(u32 uiMs)> fnWait;
};

enum class Outcome
{
    Done,
    NoFru,     // the controller has no FRU of that ID
    Busy,      // all the time that a command waits
    Protected, // a write was refused
    Refused,   // by another completion code
    Denied,    // the controller does not let this user in
    Lost       // no answer: nobody there, or the session broke off
};

struct RESULT_S
{
    Outcome enOutcome = Outcome::Done;
    u32 uiCount = 0;    // bytes transferred
    std::string strWhy; // empty when done
};

struct AREA_S
{
    u32 uiSize = 0; // bytes
    bool bWords = false;
};

class FruAccess
{
  public:
    // uiChunk: bytes in one command at first; what the controller does not take becomes less, and stays so.
    FruAccess(LINK_S stLink, u32 uiChunk);

    RESULT_S Area(u8 ucFru, AREA_S *pstArea);
    // Fewer bytes than asked for at the area's end.
    RESULT_S Read(u8 ucFru, u32 uiOffset, u32 uiLength, u8 *pucBuf);
    RESULT_S Write(u8 ucFru, u32 uiOffset, u32 uiLength, const u8 *pucBuf);

  private:
    RESULT_S Ask(u8 ucCommand, const std::vector<u8> &vecData, ANSWER_S *pstAnswer);
    RESULT_S ReadWhole(u8 ucFru, const AREA_S &stArea, u32 uiOffset, std::vector<u8> *pvecBytes);
    RESULT_S WriteWhole(u8 ucFru, const AREA_S &stArea, u32 uiOffset, const std::vector<u8> &vecBytes);

    LINK_S m_stLink;
    u32 m_uiReadChunk;
    u32 m_uiWriteChunk;
    std::map<u8, AREA_S> m_mapAreas;
};

} // namespace ipmi

#endif
