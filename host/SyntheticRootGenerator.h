#pragma once

#include <QString>

#include <cstdint>
#include <random>

namespace LibraryBrowser::Host {

// Writes a root of made-up block libraries for benchmarks: P products of B
// blocks each (subsystems and references counted), subsystems nested D deep,
// a share R of the blocks references into other products' libraries. The
// same settings and seed always give the same files. Without cross
// references every block that would have been a reference is a plain block,
// so each product reaches only its own library and keeps its block count.
class SyntheticRootGenerator {
public:
    struct Settings {
        int products = 4;
        int blocksPerProduct = 100;
        int depth = 3;
        double referenceShare = 0.1;
        bool crossReferences = true;
        // Icons drawn as SVG documents of 50 to 200 elements (frame, grid,
        // traces, ports, labels), as real libraries have, instead of shapes.
        bool realisticIcons = false;
        std::uint64_t seed = 1;
    };

    explicit SyntheticRootGenerator(const Settings& settings);

    // Writes below root/toolbox/synthetic; false with a reason on failure.
    bool write(const QString& root, QString& error);

    static QString libraryName(int product);

private:
    std::string realisticIcon(int block);
    std::uint64_t next() { return m_random(); }
    int below(int bound) { return static_cast<int>(next() % static_cast<std::uint64_t>(bound)); }
    double unit() { return static_cast<double>(next() >> 11) / static_cast<double>(1ULL << 53); }

    Settings m_settings;
    std::mt19937_64 m_random;
};

} // namespace LibraryBrowser::Host
