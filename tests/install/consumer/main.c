/* SPDX-License-Identifier: Apache-2.0 */
/* A program against what is installed: prints the baseboard's product serial number. */
#include <bmcfru_host.h>
#include <lib_fru.h>
#include <stdio.h>

int main(int argc, char **argv)
{
    FRU_DATA_S stFRUData = {0};
    u32 uiRet;

    if (argc != 2 || BMCHOST_SetRoot(argv[1]) != 0U) {
        return 2;
    }
    uiRet = LIB_FRU_GetFRUData(FRU_COMPONENT_BASEBOARD, FRU_INSTANCE_MAIN, FRU_READ_MODE_PLAIN,
                               FRU_READ_ARG_NONE, &stFRUData);
    if (uiRet == FRU_OK) {
        printf("%s\n", (const char *)stFRUData.stProductInfo.pucProductSerialNum);
    }
    FRU_ANALYZER_SafeFree(&stFRUData);
    return uiRet == FRU_OK ? 0 : 1;
}
