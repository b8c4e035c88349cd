// A small mutation loop for the fuzz targets where libFuzzer is not at hand (gcc builds,
// the bounded runs of `make test`). It takes libFuzzer's way of being called, so one
// command line serves both:
//   fuzz_x [-max_total_time=S] [-runs=N] [-timeout=S] CORPUS_DIR|FILE...
// Every corpus input runs once as it is, then mutated inputs run until the time or the count is
// spent. The input that a sanitizer stops on (or that hangs) is saved as crash-<name>.bin
// in the working folder, to run again as `fuzz_x crash-<name>.bin`.
#include <algorithm>
#include <array>
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
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

using Bytes = std::vector<uint8_t>;

// The input being run, kept where the death callback can save it.
const Bytes* g_current = nullptr;
std::string g_crashPath;

void saveCurrent()
{
    if (g_current == nullptr) {
        return;
    }
    if (FILE* out = std::fopen(g_crashPath.c_str(), "wb")) {
        std::fwrite(g_current->data(), 1, g_current->size(), out);
        std::fclose(out);
        std::fprintf(stderr, "fuzz: the input is saved as %s\n", g_crashPath.c_str());
    }
}

void onTimeout(int)
{
    static const char text[] = "fuzz: an input ran past its time limit\n";
    (void)!write(2, text, sizeof text - 1);
    saveCurrent();
    _exit(1);
}

Bytes readAll(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<Bytes> loadCorpus(const std::vector<std::string>& places)
{
    std::vector<Bytes> corpus;
    for (const std::string& place : places) {
        std::error_code error;
        if (std::filesystem::is_directory(place, error)) {
            std::vector<std::filesystem::path> files;
            for (const auto& entry : std::filesystem::recursive_directory_iterator(place, error)) {
                if (entry.is_regular_file()) {
                    files.push_back(entry.path());
                }
            }
            std::sort(files.begin(), files.end()); // the same order on every machine
            for (const auto& file : files) {
                corpus.push_back(readAll(file));
            }
        } else if (std::filesystem::is_regular_file(place, error)) {
            corpus.push_back(readAll(place));
        }
    }
    return corpus;
}

// Values that find off-by-one and overflow faults in sizes, counts and offsets.
constexpr std::array<uint32_t, 12> kInteresting = {0,          1,          0x7F,      0x80,
                                                   0xFF,       0x100,      0x7FFF,    0x8000,
                                                   0xFFFF,     0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};

class Mutator
{
public:
    // The same start on every run, so a run can be repeated.
    Mutator() : m_random(1) {}

    Bytes mutate(const std::vector<Bytes>& corpus)
    {
        Bytes data = corpus[below(corpus.size())];
        const size_t steps = 1 + below(4);
        for (size_t i = 0; i < steps; ++i) {
            step(data, corpus);
        }
        return data;
    }

private:
    size_t below(size_t bound) { return bound == 0 ? 0 : std::uniform_int_distribution<size_t>(0, bound - 1)(m_random); }

    void step(Bytes& data, const std::vector<Bytes>& corpus)
    {
        switch (below(8)) {
        case 0: // flip a bit
            if (!data.empty()) {
                data[below(data.size())] ^= uint8_t(1u << below(8));
            }
            break;
        case 1: // a random byte
            if (!data.empty()) {
                data[below(data.size())] = uint8_t(below(256));
            }
            break;
        case 2: // an interesting 8/16/32-bit value, either byte order
        {
            const size_t width = size_t(1) << below(3);
            if (data.size() < width) {
                break;
            }
            const uint32_t value = kInteresting[below(kInteresting.size())];
            const size_t at = below(data.size() - width + 1);
            const bool bigEndian = below(2) == 1;
            for (size_t b = 0; b < width; ++b) {
                const size_t shift = 8 * (bigEndian ? width - 1 - b : b);
                data[at + b] = uint8_t(value >> shift);
            }
            break;
        }
        case 3: // add to or take from a byte
            if (!data.empty()) {
                data[below(data.size())] += uint8_t(below(35)) - 17;
            }
            break;
        case 4: // cut the end off
            if (!data.empty()) {
                data.resize(below(data.size()));
            }
            break;
        case 5: // remove a range
            if (data.size() > 1) {
                const size_t at = below(data.size());
                const size_t count = 1 + below(std::min<size_t>(data.size() - at, 64));
                data.erase(data.begin() + long(at), data.begin() + long(at + count));
            }
            break;
        case 6: // repeat a range
            if (!data.empty() && data.size() < (1u << 24)) {
                const size_t at = below(data.size());
                const size_t count = 1 + below(std::min<size_t>(data.size() - at, 64));
                const Bytes copy(data.begin() + long(at), data.begin() + long(at + count));
                data.insert(data.begin() + long(below(data.size() + 1)), copy.begin(), copy.end());
            }
            break;
        default: // splice with another corpus input
        {
            const Bytes& other = corpus[below(corpus.size())];
            if (other.empty() || data.empty()) {
                break;
            }
            const size_t at = below(data.size());
            const size_t from = below(other.size());
            const size_t count = std::min(other.size() - from, data.size() - at);
            std::copy_n(other.begin() + long(from), count, data.begin() + long(at));
            break;
        }
        }
    }

    std::mt19937 m_random;
};

long flagValue(const std::string& argument, const char* name, long fallback)
{
    const std::string prefix = std::string("-") + name + "=";
    return argument.rfind(prefix, 0) == 0 ? std::strtol(argument.c_str() + prefix.size(), nullptr, 10) : fallback;
}

} // namespace

int main(int argc, char* argv[])
{
    if (LLVMFuzzerInitialize != nullptr) {
        LLVMFuzzerInitialize(&argc, &argv);
    }
    long seconds = 0;
    long runs = -1;
    long timeout = 20;
    std::vector<std::string> places;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind('-', 0) == 0) {
            seconds = flagValue(argument, "max_total_time", seconds);
            runs = flagValue(argument, "runs", runs);
            timeout = flagValue(argument, "timeout", timeout);
        } else {
            places.push_back(argument);
        }
    }
    g_crashPath = std::string("crash-") + std::filesystem::path(argv[0]).filename().string() + ".bin";
    if (__sanitizer_set_death_callback != nullptr) {
        __sanitizer_set_death_callback(saveCurrent);
    }
    std::signal(SIGALRM, onTimeout);

    std::vector<Bytes> corpus = loadCorpus(places);
    if (corpus.empty()) {
        corpus.emplace_back();
    }
    const auto runOne = [&](const Bytes& input) {
        g_current = &input;
        alarm(unsigned(timeout));
        LLVMFuzzerTestOneInput(input.data(), input.size());
        alarm(0);
        g_current = nullptr;
    };
    for (const Bytes& input : corpus) {
        runOne(input);
    }
    Mutator mutator;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    long done = 0;
    while ((runs < 0 ? seconds > 0 : done < runs) && (seconds <= 0 || std::chrono::steady_clock::now() < end)) {
        const Bytes input = mutator.mutate(corpus);
        runOne(input);
        ++done;
    }
    std::printf("fuzz: %zu corpus inputs and %ld mutated inputs ran clean\n", corpus.size(), done);
    return 0;
}
