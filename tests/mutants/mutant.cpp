// SPDX-License-Identifier: Apache-2.0
// Linked into the unit tests: chooses one mutant by MUTANT, or writes to the file MUTANT_MAP which mutants each test reaches.
#include "mutant.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr unsigned MUTANTS_MAX = 20000U;

unsigned ChosenMutant()
{
    const char *pcMutant = getenv("MUTANT");
    return pcMutant == nullptr ? 0U : static_cast<unsigned>(strtoul(pcMutant, nullptr, 10));
}

const unsigned g_uiChosen = ChosenMutant();
bool g_bMapping;
unsigned char g_aucReached[MUTANTS_MAX];

// One line a test: name, milliseconds, mutants.
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
    }
    void OnTestEnd(const testing::TestInfo &stTest) override
    {
        (void)fprintf(m_pfMap, "%s.%s %lld", stTest.test_suite_name(), stTest.name(),
                      static_cast<long long>(stTest.result()->elapsed_time()));
        for (unsigned i = 0; i < MUTANTS_MAX; i++) {
            if (g_aucReached[i] != 0U) {
                (void)fprintf(m_pfMap, " %u", i);
            }
        }
        (void)fputc('\n', m_pfMap);
    }

  private:
    FILE *m_pfMap;
};

bool StartMapping()
{
    const char *pcMap = getenv("MUTANT_MAP");
    FILE *pfMap = pcMap == nullptr ? nullptr : fopen(pcMap, "w");
    if (pfMap != nullptr) {
        testing::UnitTest::GetInstance()->listeners().Append(new Mapper(pfMap));
    }
    return pfMap != nullptr;
}

[[maybe_unused]] const bool g_bStarted = StartMapping();

} // namespace

extern "C" bool MUTANT_Is(unsigned uiMutant)
{
    if (g_bMapping) {
        g_aucReached[uiMutant] = 1U;
    }
    return uiMutant == g_uiChosen;
}
