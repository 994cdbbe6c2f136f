// Floating-point tests: the thread's control words, flags and SIGFPE action come back after
// each test. Operands pass through volatile, so each operation runs in the unit its type
// selects: double in SSE on x86-64 (x87 on i386), long double in the x87 unit.
#pragma once

#include <gtest/gtest.h>
#include <csignal>

#include "runtime/fpcontrol.h"

namespace tarvo_test {

class FpStateTest : public ::testing::Test {
protected:
    void SetUp() override { sigaction(SIGFPE, nullptr, &fpe_), runtime::clearfp(); }
    void TearDown() override {
        runtime::fp::clear_x87_exceptions();
        runtime::fp::load_x87_control(cw_);
        runtime::fp::load_mxcsr(csr_);
        sigaction(SIGFPE, &fpe_, nullptr);
    }

private:
    std::uint16_t cw_ = runtime::fp::x87_control();
    std::uint32_t csr_ = runtime::fp::mxcsr();
    struct sigaction fpe_ {};
};

template <class T>
T run_time(T value) {
    volatile T v = value;
    return v;
}
template <class T>
void keep(T value) {
    volatile T sink = value;
    (void)sink;
    asm volatile("fwait");  // delivers a pending x87 trap here
}

}  // namespace tarvo_test
