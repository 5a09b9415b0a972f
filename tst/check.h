// Checks of groups that test the frame itself rather than functions.
#pragma once

#include "settings.h"
#include "testLog.h"

// Collects the verdict of a group: every check that fails is logged by what it checks.
class Checks
{
public:
    explicit Checks(const char* group) : m_group(group) {}

    void expect(bool holds, const char* what)
    {
        if (holds)
            return;
        testLog("RAVIK_TEST, %s (%s) =>%s", m_group, what, verdictOf(1));
        m_failure = 1;
    }
    int failure() const { return m_failure; }

private:
    const char* m_group;
    int m_failure = 0;
};
