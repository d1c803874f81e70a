// SPDX-License-Identifier: Apache-2.0
// Linked into the unit tests: chooses one mutant by MUTANT, writes to the file MUTANT_MAP which mutants each test reaches, or, by
// MUTANT_SERVE, reads mutants from standard input and runs each in a copy of the process that has started already. A line:
// number, microseconds of CPU time, then groups of tests; answer: the test that failed, or "-".
#include "mutant.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// There where a sanitizer looks for leaks.
extern "C" [[gnu::weak]] int __lsan_do_recoverable_leak_check();

namespace {

constexpr unsigned MUTANTS_MAX = 100000U;
constexpr size_t NAME_MAX_LEN = 500U;
constexpr time_t LOOK_SECONDS = 5;
constexpr unsigned IDLE_LOOKS =
    3U; // as long asleep without a moment of work is a hang, however busy the machine
constexpr size_t PROC_STAT_STIME =
    12U; // behind the program's name; the word before it is the time in user mode
constexpr long MICROSECONDS = 1000000L;

unsigned ChosenMutant()
{
    const char *pcMutant = getenv("MUTANT");
    return pcMutant == nullptr ? 0U : static_cast<unsigned>(strtoul(pcMutant, nullptr, 10));
}

unsigned g_uiChosen = ChosenMutant();
bool g_bMapping;
unsigned char g_aucReached[MUTANTS_MAX];

std::string NameOf(const testing::TestInfo &stTest)
{
    return std::string(stTest.test_suite_name()) + "." + stTest.name();
}

// clock_gettime is the tests' own.
long CpuMicroseconds()
{
    rusage stUsage{};
    (void)getrusage(RUSAGE_SELF, &stUsage);
    return (stUsage.ru_utime.tv_sec + stUsage.ru_stime.tv_sec) * MICROSECONDS + stUsage.ru_utime.tv_usec +
           stUsage.ru_stime.tv_usec;
}

// One line a test: name, microseconds, file, mutants.
class Mapper : public testing::EmptyTestEventListener
{
  public:
    explicit Mapper(FILE *pfMap) : m_pfMap(pfMap)
    {
        g_bMapping = true;
    }
    ~Mapper() override
    {
        (void)fclose(m_pfMap);
    }
    void OnTestStart(const testing::TestInfo &) override
    {
        std::fill(std::begin(g_aucReached), std::end(g_aucReached), 0U);
        m_lStart = CpuMicroseconds();
    }
    void OnTestEnd(const testing::TestInfo &stTest) override
    {
        (void)fprintf(m_pfMap, "%s %ld %s", NameOf(stTest).c_str(), CpuMicroseconds() - m_lStart,
                      stTest.file());
        for (unsigned i = 0; i < MUTANTS_MAX; i++) {
            if (g_aucReached[i] != 0U) {
                (void)fprintf(m_pfMap, " %u", i);
            }
        }
        (void)fputc('\n', m_pfMap);
    }

  private:
    FILE *m_pfMap;
    long m_lStart = 0;
};

// Tells the server which test runs; the first that fails is enough.
class Teller : public testing::EmptyTestEventListener
{
  public:
    explicit Teller(char *pcName) : m_pcName(pcName) {}
    void OnTestStart(const testing::TestInfo &stTest) override
    {
        (void)snprintf(m_pcName, NAME_MAX_LEN, "%s", NameOf(stTest).c_str());
    }
    void OnTestEnd(const testing::TestInfo &stTest) override
    {
        if (stTest.result()->Failed()) {
            _exit(1);
        }
    }

  private:
    char *m_pcName;
};

void LimitCopy(long lMicroseconds)
{
    const itimerval stCpu{{0, 0}, {lMicroseconds / MICROSECONDS, lMicroseconds % MICROSECONDS}};
    (void)setitimer(ITIMER_PROF, &stCpu, nullptr); // its signal ends the process
    const auto uiSeconds = static_cast<rlim_t>(lMicroseconds / MICROSECONDS) + 2U;
    const rlimit stSeconds{uiSeconds, uiSeconds};
    (void)setrlimit(RLIMIT_CPU, &stSeconds);
}

[[noreturn]] void RunCopy(std::istringstream &stGroups)
{
    (void)setpgid(0, 0);
    (void)setenv("MUTANT", std::to_string(g_uiChosen).c_str(), 1);
    std::string strGroup;
    while (stGroups >> strGroup) {
        GTEST_FLAG_SET(filter, strGroup);
        if (RUN_ALL_TESTS() != 0) {
            _exit(1);
        }
    }
    _exit(__lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0 ? 1 : 0);
}

// Whether it sleeps, and the work that it has done.
std::pair<bool, std::string> StateOf(pid_t iProcess)
{
    std::ifstream stFile("/proc/" + std::to_string(iProcess) + "/stat");
    std::string strText((std::istreambuf_iterator<char>(stFile)), std::istreambuf_iterator<char>());
    std::istringstream stWords(strText.substr(strText.rfind(')') + 1U));
    const std::vector<std::string> vecWords{std::istream_iterator<std::string>(stWords), {}};
    if (vecWords.size() <= PROC_STAT_STIME) {
        return {false, ""};
    }
    return {vecWords[0] == "S", vecWords[PROC_STAT_STIME - 1U] + "+" + vecWords[PROC_STAT_STIME]};
}

// Whether the process ended well.
bool Await(pid_t iProcess)
{
    sigset_t stChildren;
    (void)sigemptyset(&stChildren);
    (void)sigaddset(&stChildren, SIGCHLD);
    int iStatus = 0;
    unsigned uiIdle = 0U;
    std::string strDone;
    const timespec stWait{LOOK_SECONDS, 0};
    while (waitpid(iProcess, &iStatus, WNOHANG) == 0) {
        if (sigtimedwait(&stChildren, nullptr, &stWait) >= 0) {
            continue;
        }
        const auto [bSleeps, strNow] = StateOf(iProcess);
        uiIdle = bSleeps && strNow == strDone ? uiIdle + 1U : 0U;
        strDone = strNow;
        if (uiIdle == IDLE_LOOKS) {
            (void)kill(iProcess, SIGKILL);
        }
    }
    (void)kill(-iProcess, SIGKILL); // whom it left behind
    return WIFEXITED(iStatus) && WEXITSTATUS(iStatus) == 0;
}

int Serve()
{
    auto *pcName = static_cast<char *>(
        mmap(nullptr, NAME_MAX_LEN, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    sigset_t stChildren;
    (void)sigemptyset(&stChildren);
    (void)sigaddset(&stChildren, SIGCHLD);
    // What the tests print is nobody's business; the answers keep the old standard output.
    FILE *pfAnswers = fdopen(dup(STDOUT_FILENO), "w");
    const int iNull = open("/dev/null", O_WRONLY | O_CLOEXEC);
    (void)dup2(iNull, STDOUT_FILENO);
    (void)dup2(iNull, STDERR_FILENO);
    auto &stListeners = testing::UnitTest::GetInstance()->listeners();
    delete stListeners.Release(stListeners.default_result_printer());
    stListeners.Append(new Teller(pcName));
    std::string strLine;
    while (std::getline(std::cin, strLine)) {
        std::istringstream stWords(strLine);
        long lMicroseconds = 0;
        stWords >> g_uiChosen >> lMicroseconds;
        pcName[0] = '\0';
        (void)sigprocmask(SIG_BLOCK, &stChildren, nullptr);
        const pid_t iProcess = fork();
        if (iProcess == 0) {
            (void)sigprocmask(SIG_UNBLOCK, &stChildren, nullptr);
            LimitCopy(lMicroseconds);
            RunCopy(stWords);
        }
        const bool bPassed = iProcess > 0 && Await(iProcess);
        (void)fprintf(pfAnswers, "%s\n", bPassed ? "-" : pcName[0] == '\0' ? "start" : pcName);
        (void)fflush(pfAnswers);
    }
    return 0;
}

} // namespace

extern "C" bool MUTANT_Is(unsigned uiMutant)
{
    if (g_bMapping) {
        g_aucReached[uiMutant] = 1U;
    }
    return uiMutant == g_uiChosen;
}

// Stands before the one of the test library.
int main(int iArgs, char **ppcArgs)
{
    testing::InitGoogleTest(&iArgs, ppcArgs);
    const char *pcMap = getenv("MUTANT_MAP");
    if (pcMap != nullptr) {
        FILE *pfMap = fopen(pcMap, "w");
        if (pfMap == nullptr) {
            return 1;
        }
        testing::UnitTest::GetInstance()->listeners().Append(new Mapper(pfMap));
    }
    return getenv("MUTANT_SERVE") != nullptr ? Serve() : RUN_ALL_TESTS();
}
