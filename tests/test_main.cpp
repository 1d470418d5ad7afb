// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the test cases that the arguments choose; choosing none at all is a failure.
#define DOCTEST_CONFIG_IMPLEMENT
#include "tests/support/skip.h"

#include <doctest/doctest.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

#ifdef VELMORA_WINDOW_TESTS
#include "tests/support/temporary_folder.h"

#include <QApplication>
#endif

namespace
{

constexpr int skippedStatus = 77; // as ctest knows it by SKIP_RETURN_CODE

struct Counter : doctest::IReporter {
    explicit Counter(const doctest::ContextOptions&) {}
    inline static unsigned ran = 0;
    inline static unsigned skipped = 0;

    void test_case_start(const doctest::TestCaseData&) override { ++ran; }
    void report_query(const doctest::QueryData&) override {}
    void test_run_start() override {}
    void test_run_end(const doctest::TestRunStats&) override {}
    void test_case_reenter(const doctest::TestCaseData&) override {}
    void test_case_end(const doctest::CurrentTestCaseStats&) override {}
    void test_case_exception(const doctest::TestCaseException&) override {}
    void subcase_start(const doctest::SubcaseSignature&) override {}
    void subcase_end() override {}
    void log_assert(const doctest::AssertData&) override {}
    void log_message(const doctest::MessageData&) override {}
    void test_case_skipped(const doctest::TestCaseData&) override {}
};

}

// scripts/run_tests reads these lines.
void skipCase(const std::string& why)
{
    ++Counter::skipped;
    std::cout << "skipped: " << doctest::getContextOptions()->currentTest->m_name << ": " << why << std::endl;
}

DOCTEST_REGISTER_LISTENER("counter", 1, Counter);

namespace
{

int run(int argc, char** argv)
{
#ifdef VELMORA_WINDOW_TESTS
    // What the library keeps for all programs of a user, such as the look of file dialogs, is none of the
    // tests'.
    const TemporaryFolder settings;
    setenv("XDG_CONFIG_HOME", settings.path().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
#endif
    doctest::Context context(argc, argv);
    const int result = context.run();
    if (result == 0 && Counter::skipped > 0)
        return skippedStatus;
    if (context.shouldExit() || Counter::ran > 0)
        return result;
    std::cerr << "No test case was run.\n";
    return 1;
}

}

// As the program ends: a thread that a server holds must not meet libraries that are taken down. The
// sanitizers have their last word where a process returns.
int main(int argc, char** argv)
{
    const int status = run(argc, argv);
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return status;
#else
    std::cout.flush();
    std::fflush(nullptr);
    std::quick_exit(status);
#endif
}
