// SPDX-License-Identifier: Apache-2.0
// The FRU commands of the Storage function, ahead of libbmcfru's request handlers.
//
// The handlers take for granted that the bytes a command has are there, and that the response buffer
// holds the largest response. Whoever carries requests to them has to see to that: here it is done,
// for any transport.
#ifndef IPMI_SIM_FRU_REQUESTS_H
#define IPMI_SIM_FRU_REQUESTS_H

#include "lib_fru_types.h"

/*
 * Answers Get FRU Inventory Area Info (0x10), Read FRU Data (0x11) or Write FRU Data (0x12); any other
 * command gets 0xC1. pucReq holds the request's uiReqLen data bytes; bytes behind those that the command has
 * are not looked at. pucRes receives at most uiRoom bytes, what the transport can carry back. Returns the
 * bytes filled, the completion code first; 0 only when uiRoom is 0.
 *
 * Completion codes given here; all others are the handlers' own:
 *   0xC0  a write while another program holds the controller's write lock
 *   0xC7  fewer bytes than the command has
 *   0xC8  more than 255 bytes to write: the response could not say how many were
 *   0xCA  the response does not fit into uiRoom
 */
u32 AnswerFruRequest(u8 ucCommand, const u8 *pucReq, u32 uiReqLen, u32 uiRoom, u8 *pucRes);

#endif
