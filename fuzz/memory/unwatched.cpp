// SPDX-License-Identifier: Apache-2.0
// What Debian's libraries write into our memory without telling the memory sanitizer: the links of a map's or set's new
// node, the text of an exception, and what stat() fills in.
#include <set>
#include <stdexcept>

#include <sanitizer/msan_interface.h>
#include <sys/stat.h>

extern "C" {
// std::_Rb_tree_insert_and_rebalance(), as the linker knows it
void __real__ZSt29_Rb_tree_insert_and_rebalancebPSt18_Rb_tree_node_baseS0_RS_(
    bool bLeft, std::_Rb_tree_node_base *pstNode, std::_Rb_tree_node_base *pstParent,
    std::_Rb_tree_node_base &stHeader);
void __wrap__ZSt29_Rb_tree_insert_and_rebalancebPSt18_Rb_tree_node_baseS0_RS_(
    bool bLeft, std::_Rb_tree_node_base *pstNode, std::_Rb_tree_node_base *pstParent,
    std::_Rb_tree_node_base &stHeader)
{
    __real__ZSt29_Rb_tree_insert_and_rebalancebPSt18_Rb_tree_node_baseS0_RS_(bLeft, pstNode, pstParent,
                                                                             stHeader);
    __msan_unpoison(pstNode, sizeof(*pstNode));
}

// std::runtime_error::what(): the text was copied when the exception was made.
const char *__real__ZNKSt13runtime_error4whatEv(const std::runtime_error *pstError);
const char *__wrap__ZNKSt13runtime_error4whatEv(const std::runtime_error *pstError)
{
    const char *pcText = __real__ZNKSt13runtime_error4whatEv(pstError);
    __msan_unpoison_string(pcText);
    return pcText;
}

int __real_stat64(const char *pcPath, struct stat64 *pstStat);
int __real_fstat64(int iFd, struct stat64 *pstStat);
int __real_fstatat64(int iDirectory, const char *pcPath, struct stat64 *pstStat, int iFlags);

static int Told(int iResult, struct stat64 *pstStat)
{
    if (iResult == 0) {
        __msan_unpoison(pstStat, sizeof(*pstStat));
    }
    return iResult;
}

int __wrap_stat64(const char *pcPath, struct stat64 *pstStat)
{
    return Told(__real_stat64(pcPath, pstStat), pstStat);
}

int __wrap_fstat64(int iFd, struct stat64 *pstStat)
{
    return Told(__real_fstat64(iFd, pstStat), pstStat);
}

int __wrap_fstatat64(int iDirectory, const char *pcPath, struct stat64 *pstStat, int iFlags)
{
    return Told(__real_fstatat64(iDirectory, pcPath, pstStat, iFlags), pstStat);
}
}
