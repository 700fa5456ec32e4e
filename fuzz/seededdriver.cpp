// SPDX-License-Identifier: MIT
// The seeded random driver: a main() for the fuzz harnesses when they are built without
// libFuzzer (gcc, the normal presets). It runs every file of the corpus given on the command
// line, then inputs made from a fixed seed (random bytes, and mutations and splices of the
// corpus) until a number of inputs or seconds is reached, and prints how many it ran. It does
// not learn from coverage as libFuzzer does; it keeps CI exercising the harnesses under the
// sanitizers with the same inputs on every run.
//
//   fuzz_x [--seconds S] [--runs N] [--seed N] [--max-len N] [path...]
//
// A path is a corpus directory (every regular file in it, by name) or one input file; with
// only files and no --seconds or --runs, just those files run, to reproduce a crash. When an
// input crashes, it is written to "crash-<harness>-<input number>" in the working directory.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

// Present when a sanitizer runtime is linked in: it then reports the crash, and calls this back
// before the process ends.
extern "C" void __sanitizer_set_death_callback(void (*callback)())
    __attribute__((weak, visibility("default")));

namespace {

using Bytes = std::vector<uint8_t>;

struct Options
{
    double seconds = -1;
    long long runs = -1;
    uint64_t seed = 1;
    std::size_t maxLength = 4096;
    std::vector<std::string> paths;
};

// What is running now, for the crash writer; set before each input.
Bytes currentInput;
char crashPath[512] = {0};

// Async-signal-safe: only open, write and close.
void writeCrashInput()
{
    if (crashPath[0] == '\0') {
        return;
    }
    const int file = ::open(crashPath, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file < 0) {
        return;
    }
    std::size_t written = 0;
    while (written < currentInput.size()) {
        const ssize_t step =
            ::write(file, currentInput.data() + written, currentInput.size() - written);
        if (step <= 0) {
            break;
        }
        written += static_cast<std::size_t>(step);
    }
    ::close(file);
    static const char note[] = "\nseeded driver: the crashing input was written to ";
    [[maybe_unused]] ssize_t ignored = ::write(STDERR_FILENO, note, sizeof(note) - 1);
    ignored = ::write(STDERR_FILENO, crashPath, std::strlen(crashPath));
    ignored = ::write(STDERR_FILENO, "\n", 1);
}

void onFatalSignal(int signal)
{
    writeCrashInput();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void installCrashWriter()
{
    if (__sanitizer_set_death_callback != nullptr) {
        __sanitizer_set_death_callback(writeCrashInput);
        return;
    }
    // Without a sanitizer nothing else handles these, so the signals are ours.
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        std::signal(signal, onFatalSignal);
    }
}

bool parseOptions(int argc, char** argv, Options& options)
{
    for (int index = 1; index < argc; ++index) {
        const std::string argument = argv[index];
        const bool hasValue = index + 1 < argc;
        if (argument == "--seconds" && hasValue) {
            options.seconds = std::atof(argv[++index]);
        } else if (argument == "--runs" && hasValue) {
            options.runs = std::atoll(argv[++index]);
        } else if (argument == "--seed" && hasValue) {
            options.seed = std::strtoull(argv[++index], nullptr, 10);
        } else if (argument == "--max-len" && hasValue) {
            options.maxLength = std::max<std::size_t>(1, std::strtoull(argv[++index], nullptr, 10));
        } else if (argument.rfind("--", 0) == 0) {
            std::fprintf(stderr, "unknown option %s\n", argument.c_str());
            return false;
        } else {
            options.paths.push_back(argument);
        }
    }
    return true;
}

std::vector<Bytes> readCorpus(const std::vector<std::string>& paths)
{
    namespace fs = std::filesystem;
    std::vector<fs::path> files;
    for (const std::string& path : paths) {
        std::error_code error;
        if (fs::is_directory(path, error)) {
            std::vector<fs::path> inside;
            for (const fs::directory_entry& entry : fs::directory_iterator(path, error)) {
                if (entry.is_regular_file(error)) {
                    inside.push_back(entry.path());
                }
            }
            std::sort(inside.begin(), inside.end());
            files.insert(files.end(), inside.begin(), inside.end());
        } else if (fs::is_regular_file(path, error)) {
            files.emplace_back(path);
        } else {
            std::fprintf(stderr, "seeded driver: no corpus at %s\n", path.c_str());
        }
    }
    std::vector<Bytes> corpus;
    for (const fs::path& file : files) {
        std::ifstream stream(file, std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(stream),
                            std::istreambuf_iterator<char>());
    }
    return corpus;
}

// Values that often sit on a boundary of a length or a count.
constexpr uint32_t interesting[] = {
    0,       1,          2,          0x7f,       0x80,       0xff,  0x100, 0x7fff, 0x8000, 0xffff,
    0x10000, 0x7fffffff, 0x80000000, 0xfffffffe, 0xffffffff, 16384, 16385, 4096,   64};

void mutate(Bytes& bytes, const std::vector<Bytes>& corpus, std::mt19937_64& random,
            std::size_t maxLength)
{
    const auto pick = [&random](std::size_t count) {
        return count == 0 ? 0 : static_cast<std::size_t>(random() % count);
    };
    const int steps = 1 + static_cast<int>(random() % 4);
    for (int step = 0; step < steps; ++step) {
        switch (random() % 7) {
        case 0: // flip one bit
            if (!bytes.empty()) {
                bytes[pick(bytes.size())] ^= static_cast<uint8_t>(1U << (random() % 8));
            }
            break;
        case 1: // one random byte
            if (!bytes.empty()) {
                bytes[pick(bytes.size())] = static_cast<uint8_t>(random());
            }
            break;
        case 2: { // a boundary value, big-endian, as lengths are stored
            if (bytes.size() < 4) {
                break;
            }
            const uint32_t value = interesting[pick(std::size(interesting))];
            const std::size_t at = pick(bytes.size() - 3);
            for (int index = 0; index < 4; ++index) {
                bytes[at + static_cast<std::size_t>(index)] =
                    static_cast<uint8_t>(value >> (24 - 8 * index));
            }
            break;
        }
        case 3: { // insert random bytes
            const std::size_t count = 1 + pick(16);
            const std::size_t at = pick(bytes.size() + 1);
            Bytes inserted(count);
            for (uint8_t& byte : inserted) {
                byte = static_cast<uint8_t>(random());
            }
            bytes.insert(bytes.begin() + static_cast<long>(at), inserted.begin(), inserted.end());
            break;
        }
        case 4: { // erase a range
            if (bytes.empty()) {
                break;
            }
            const std::size_t at = pick(bytes.size());
            const std::size_t count = 1 + pick(std::min<std::size_t>(bytes.size() - at, 32));
            bytes.erase(bytes.begin() + static_cast<long>(at),
                        bytes.begin() + static_cast<long>(at + count));
            break;
        }
        case 5: { // copy a range inside the input
            if (bytes.size() < 2) {
                break;
            }
            const std::size_t from = pick(bytes.size());
            const std::size_t count = 1 + pick(std::min<std::size_t>(bytes.size() - from, 64));
            const Bytes copied(bytes.begin() + static_cast<long>(from),
                               bytes.begin() + static_cast<long>(from + count));
            const std::size_t at = pick(bytes.size() + 1);
            bytes.insert(bytes.begin() + static_cast<long>(at), copied.begin(), copied.end());
            break;
        }
        default: { // splice: the front of this input, the back of another
            if (corpus.empty()) {
                break;
            }
            const Bytes& other = corpus[pick(corpus.size())];
            const std::size_t keep = pick(bytes.size() + 1);
            const std::size_t from = pick(other.size() + 1);
            bytes.resize(keep);
            bytes.insert(bytes.end(), other.begin() + static_cast<long>(from), other.end());
            break;
        }
        }
    }
    if (bytes.size() > maxLength) {
        bytes.resize(maxLength);
    }
}

// Input number `index` of the run: the same for a seed whatever ran before it, so that one
// input can be made again from its number.
Bytes makeInput(const std::vector<Bytes>& corpus, uint64_t seed, uint64_t index,
                std::size_t maxLength)
{
    std::mt19937_64 random(seed * 0x9e3779b97f4a7c15ULL + index);
    Bytes bytes;
    if (corpus.empty() || random() % 4 == 0) {
        // Mostly short: long random inputs rarely get past a harness's first decisions.
        const std::size_t limit =
            std::min<std::size_t>(maxLength, std::size_t(1) << (random() % 13));
        bytes.resize(static_cast<std::size_t>(random() % (limit + 1)));
        for (uint8_t& byte : bytes) {
            byte = static_cast<uint8_t>(random());
        }
        return bytes;
    }
    bytes = corpus[static_cast<std::size_t>(random() % corpus.size())];
    mutate(bytes, corpus, random, maxLength);
    return bytes;
}

void runOne(const Bytes& bytes)
{
    currentInput = bytes;
    LLVMFuzzerTestOneInput(currentInput.data(), currentInput.size());
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!parseOptions(argc, argv, options)) {
        std::fprintf(stderr,
                     "usage: %s [--seconds S] [--runs N] [--seed N] [--max-len N] "
                     "[corpus directory or file...]\n",
                     argv[0]);
        return 2;
    }
    const std::string harness = std::filesystem::path(argv[0]).filename().string();
    const std::vector<Bytes> corpus = readCorpus(options.paths);
    installCrashWriter();

    const auto start = std::chrono::steady_clock::now();
    const auto elapsed = [&start] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    long long ran = 0;
    for (const Bytes& input : corpus) {
        std::snprintf(crashPath, sizeof(crashPath), "crash-%s-corpus-%lld", harness.c_str(), ran);
        runOne(input);
        ++ran;
    }
    const long long fromCorpus = ran;

    // Only files and no bound: a reproduction run.
    const bool generate = options.seconds >= 0 || options.runs >= 0;
    long long generated = 0;
    while (generate && (options.runs < 0 || generated < options.runs) &&
           (options.seconds < 0 || elapsed() < options.seconds)) {
        std::snprintf(crashPath, sizeof(crashPath), "crash-%s-%llu-%lld", harness.c_str(),
                      static_cast<unsigned long long>(options.seed), generated);
        runOne(
            makeInput(corpus, options.seed, static_cast<uint64_t>(generated), options.maxLength));
        ++generated;
    }
    crashPath[0] = '\0';
    std::printf("%s: ran %lld inputs (%lld from the corpus, %lld generated from seed %llu) in "
                "%.1f s\n",
                harness.c_str(), fromCorpus + generated, fromCorpus, generated,
                static_cast<unsigned long long>(options.seed), elapsed());
    return 0;
}
