/// Writes the sound of the limit alarm: two short tones that decay, as a WAV file.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace
{

constexpr double pi = 3.14159265358979323846;
constexpr unsigned sampleRate = 44100;
constexpr double peak = 0.5; // of full scale

struct Tone {
    double startSeconds;
    double hertz;
};

constexpr Tone tones[] = {{0.0, 880.0}, {0.22, 1174.66}};
constexpr double toneSeconds = 0.45;
constexpr double attackSeconds = 0.006;
constexpr double decaySeconds = 0.1; // to 1/e
constexpr double totalSeconds = 0.22 + toneSeconds;

/** Loudness of a tone, 0 to 1: it begins and ends at nothing, so that neither clicks. */
double envelope(double seconds)
{
    const double attack = std::min(seconds / attackSeconds, 1.0);
    const double release = 1 - seconds / toneSeconds;
    return attack * release * std::exp(-seconds / decaySeconds);
}

std::vector<double> mixedTones()
{
    std::vector<double> samples(unsigned(totalSeconds * sampleRate), 0.0);
    for (const Tone &tone : tones) {
        const auto first = unsigned(tone.startSeconds * sampleRate);
        const auto count = unsigned(toneSeconds * sampleRate);
        for (unsigned i = 0; i < count && first + i < samples.size(); ++i) {
            const double seconds = double(i) / sampleRate;
            samples[first + i] += envelope(seconds) * std::sin(2 * pi * tone.hertz * seconds);
        }
    }
    return samples;
}

void appendNumber(std::string &bytes, std::uint32_t number, int size)
{
    for (int i = 0; i < size; ++i)
        bytes += char((number >> (8 * i)) & 0xFF);
}

std::string waveHeader(std::uint32_t dataBytes)
{
    std::string bytes = "RIFF";
    appendNumber(bytes, 36 + dataBytes, 4);
    bytes += "WAVEfmt ";
    appendNumber(bytes, 16, 4);             // size of the description
    appendNumber(bytes, 1, 2);              // plain samples
    appendNumber(bytes, 1, 2);              // one channel
    appendNumber(bytes, sampleRate, 4);     // samples a second
    appendNumber(bytes, sampleRate * 2, 4); // bytes a second
    appendNumber(bytes, 2, 2);              // bytes of all channels together
    appendNumber(bytes, 16, 2);             // bits of a sample
    bytes += "data";
    appendNumber(bytes, dataBytes, 4);
    return bytes;
}

std::string waveFile(const std::vector<double> &samples)
{
    double loudest = 0;
    for (const double sample : samples)
        loudest = std::max(loudest, std::fabs(sample));
    std::string bytes = waveHeader(std::uint32_t(samples.size() * 2));
    for (const double sample : samples) {
        const auto value = std::int16_t(std::lround(sample / loudest * peak * 32767));
        appendNumber(bytes, std::uint16_t(value), 2);
    }
    return bytes;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <file.wav>\n", argv[0]);
        return 2;
    }
    std::ofstream file(argv[1], std::ios::binary);
    file << waveFile(mixedTones());
    file.close();
    return file ? 0 : 1;
}
