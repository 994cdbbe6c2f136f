// The bad-input sweep: every exported routine with a C prototype is called with each variant
// below in every argument at once (zero, -1, the extreme integers, a handle never issued
// and one already freed; empty, blank, binary, over-long and "negative" CHARACTER lengths).
// Each routine runs in a child of its own, in a scratch directory, with its output kept
// aside: the child must end normally (no signal, no sanitizer report, no leak when it
// exits), within the time limit, and a structure routine must refuse a bad handle.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "base/fstring.h"
#include "support/support.h"
#include <tarvo/tarvo.h>

namespace {

struct Variant {
    const char* label;
    std::int64_t number;     // every integer argument and the first element of every array
    const char* text;        // the start of every CHARACTER argument, blanks after it
    std::size_t length;      // every hidden length
    bool bad_handle;         // the number names no live structure
};

// A freed structure's handle, filled in before the children start.
std::int64_t stale_handle = 0;

std::vector<Variant> variants() {
    return {
        {"zero", 0, "", 0, false},
        {"minus one", -1, "", 8, false},
        {"most negative", INT32_MIN, "\xff\x01\x7f" "abc", 8, false},
        {"most positive", INT32_MAX, "x", 8, false},
        {"negative length", 1, "x", static_cast<std::size_t>(-1), false},
        {"never issued", 12345, "PXF", 3, true},
        {"freed", stale_handle, "stat", 4, true},
    };
}

// The arguments of one call: each pointer argument gets a large zeroed block of its own,
// so that a routine writing a whole array or record stays inside it. Blocks are kept by
// argument position, so an output can be read back after the call.
class Args {
public:
    explicit Args(const Variant& v) : v_(v) {}
    ~Args() {
        for (void* block : blocks_) std::free(block);
    }
    Args(const Args&) = delete;
    Args& operator=(const Args&) = delete;

    template <class T>
    T* buffer(int k) {
        void* block = at(k);
        if constexpr (std::is_arithmetic_v<T>) *static_cast<T*>(block) = static_cast<T>(v_.number);
        return static_cast<T*>(block);
    }
    char* text(int k) {
        auto* block = static_cast<char*>(at(k));
        std::memset(block, ' ', kBlock - 1);
        std::memcpy(block, v_.text, std::strlen(v_.text));
        return block;
    }
    std::size_t length(int) const { return v_.length; }
    std::int64_t number() const { return v_.number; }
    std::int32_t int_at(int k) { return *static_cast<std::int32_t*>(at(k)); }

private:
    static constexpr std::size_t kBlock = 1 << 16;
    void* at(int k) {
        if (blocks_[k] == nullptr) blocks_[k] = std::calloc(1, kBlock);
        return blocks_[k];
    }
    const Variant& v_;
    void* blocks_[16] = {};
};

enum class Check { no_crash, handle_refused };

struct Row {
    const char* name;
    Check check;
    int ierror;    // the IERROR argument's position, for handle_refused
    bool handles;  // takes a structure, directory or procedure handle
    void (*call)(Args&);
};

const Row kRows[] = {
#include "sweep_calls.inc"
};
const char* const kWithoutPrototype[] = {TARVO_SWEEP_WITHOUT_PROTOTYPE};

// Not called, with the reason: they end, replace, duplicate or suspend the calling
// process whatever their arguments, by design.
const std::set<std::string> kSkipped = {
    "abort_", "exit_", "pxfexit_", "pxffastexit_",  // end the process
    "pxfexecv_", "pxfexecve_", "pxfexecvp_",       // replace it ("stat" is a program)
    "pxffork_",                                    // duplicate it
    "pxfpause_", "pxfsigsuspend_",                 // wait for a signal
    "sleep_", "sleepqq_", "pxfsleep_", "beepqq_",  // wait for the time given
    "general_handler",  // the floating-point fault handler: with no procedure to call it ends the process
    "jmod_",            // a zero divisor raises the divide fault, which programs trap on purpose
};

// Arguments a routine is documented to take on trust, or to answer by ending the process:
// not passed. SORTQQ and BSEARCHQQ refuse counts below 1 but trust the address and count of
// a positive one; the qsort routines hand every count to the C library's qsort as it is;
// the PXF path routines take a non-zero ILEN as the caller gives it; IEEE_FLAGS ends the
// process for a keyword argument longer than 20; on the 32-bit build a handle is an
// address taken on trust. (Bessel functions of an order in the
// millions, either sign, are only slow: the C library's recurrence takes a step per order.)
const std::set<std::string> kIlenTrusted = {
    "pxfaccess_", "pxfchdir_", "pxfchmod_", "pxfchown_", "pxfcreat_",  "pxflink_",  "pxfmkdir_",
    "pxfmkfifo_", "pxfopen_",  "pxfopendir_", "pxfrename_", "pxfrmdir_", "pxfunlink_",
};

const std::set<std::string> kOrdered = {"besjn_", "besyn_", "dbesjn_", "dbesyn_"};

bool outside_contract(const Row& row, const Variant& v) {
    const std::string name = row.name;
    // On the 32-bit build a handle is the instance's address, so only 0 can be told apart.
    if (!TARVO_HANDLE_TABLES && row.handles && v.number != 0) return true;
    if (name == "sortqq_" || name == "bsearchqq_") return v.number > 0;
    if (name.rfind("qsort_", 0) == 0) return v.number != 0;
    if (kIlenTrusted.count(name) != 0) return v.number > 4096;
    if (kOrdered.count(name) != 0) return v.number > 4096 || v.number < -4096;
    if (name == "ieee_flags_") return base::signed_length(v.length) > 20 || base::signed_length(v.length) < 0;
    return false;
}

// Runs every variant of one routine; the child's exit status says how it went.
int sweep_routine(const Row& row, int progress) {
    alarm(20);  // a routine that hangs ends by SIGALRM
    int index = 0;
    for (const Variant& v : variants()) {
        const char mark = static_cast<char>('0' + index++);
        (void)!write(progress, &mark, 1);
        if (outside_contract(row, v)) continue;
        Args args(v);
        row.call(args);
        if (row.check == Check::handle_refused && v.bad_handle && args.int_at(row.ierror) == 0) {
            std::printf("a bad handle was accepted (IERROR 0)\n");
            std::fflush(stdout);
            _exit(3);
        }
    }
    std::exit(0);  // the leak checker runs here
}

std::string describe(int status) {
    if (WIFSIGNALED(status)) return "signal " + std::to_string(WTERMSIG(status));
    return "exit status " + std::to_string(WEXITSTATUS(status));
}

// The rows are swept in four shards, tests of their own, so that each stays short and the
// shards can run side by side.
constexpr int kShards = 4;

class BadInputSweep : public tarvo_test::ScratchDirTest, public ::testing::WithParamInterface<int> {};

TEST_P(BadInputSweep, EveryRoutineSurvivesEveryVariant) {
    std::int32_t handle = 0, ierror = 0;
    pxfstructcreate_("stat", &handle, &ierror, 4);
    ASSERT_EQ(ierror, 0);
    pxfstructfree_(&handle, &ierror);
    stale_handle = handle;

    int swept = 0, index = 0;
    for (const Row& row : kRows) {
        if (index++ % kShards != GetParam() || kSkipped.count(row.name) != 0) continue;
        int pipe_fds[2];
        ASSERT_EQ(pipe(pipe_fds), 0);
        const std::string output = path(std::string("output-") + row.name);
        const pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            close(pipe_fds[0]);
            const int in = open("/dev/null", O_RDONLY);
            const int out = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            dup2(in, 0);
            dup2(out, 1);
            dup2(out, 2);
            sweep_routine(row, pipe_fds[1]);
        }
        close(pipe_fds[1]);
        std::string reached;
        char c;
        while (read(pipe_fds[0], &c, 1) == 1) reached += c;
        close(pipe_fds[0]);
        int status = 0;
        waitpid(pid, &status, 0);
        ++swept;
        if (WIFEXITED(status) && WEXITSTATUS(status) == 0) continue;
        const int last = reached.empty() ? 0 : reached.back() - '0';
        std::ifstream text(output);
        ADD_FAILURE() << row.name << " with the variant \"" << variants()[last].label << "\": "
                      << describe(status) << "\n"
                      << std::string(std::istreambuf_iterator<char>(text), {});
    }
    std::printf("%d routines swept with %zu variants each; in all shards %zu left out on purpose, %zu without a C prototype\n",
                swept, variants().size(), kSkipped.size(), std::size(kWithoutPrototype));
}

INSTANTIATE_TEST_SUITE_P(Shards, BadInputSweep, ::testing::Range(0, kShards));

}  // namespace
