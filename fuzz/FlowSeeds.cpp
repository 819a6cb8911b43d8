/// Flow files, right and wrong, and the small texts in them, each behind the byte by which the
/// harness chooses what it does.

#include "fuzz/Seeds.hpp"

#include <fstream>
#include <string>
#include <vector>

namespace {

const std::vector<std::string> kFiles = {
    R"(version: 1
plugins:
  - QuorilPluginSensorFile-2.5.0
layouts:
  - sensors
  - name: main
    period: 5ms
filters:
  - name: imu
    class: FilterImuSimulator
    layout: sensors
    properties:
      - Rate: ${A:-200}
      - Seed: $$7
  - name: rec
    class: FilterRecordSensorFile
    properties:
      - File Name: ${OUTPUT}
      - ColNames#1: ax, ay, az
      - Record: true
connections:
  - imu.acc -> rec.input#1 {buffer: 64, lifo: true}
  - {from: imu.time, to: rec.TimeStampPin, lifo: true}
  - "imu.gyr -> rec.input#2"   # quoted
script:
  - at: 2s
    command: rec.Flush
  - at: 1.5s
    set: {rec.Record: true, rec.Freq: 100}
stop:
  - for: 10s
  - when: {rec.Record: false, imu.Rate: 1}
  - finished: true
)",
    "{version: 1, filters: [{name: a, class: b}], stop: [{for: 2min}]}",
    "version: 1\nfilters:\n  - &f {name: x, class: ''}\n  - {name: y, class: z, <<: *f}\n",
    "version: 1\nfilters: [*f]\nlayouts: [${UNKNOWN}, ${EMPTY:-main}, a b]\n",
    "version: 2\r\nfilters: ~\r\nscript: {}\r\nstup: []\r\n",
    "version: '1'\nfilters:\n- name: a\n  class: |\n    long\n    text\n  properties:\n  - k: >-\n"
    "      folded\n      text\n  - k: !!str 2\n",
    "--- {version: 1}\n...\n--- second\n",
    "&a [*a]\n",
    "[[[[[[[[[[[[[[[[[[[[[[[[[[\n",
    "a: &a [x, x]\nb: &b [*a, *a]\nc: &c [*b, *b]\nd: [*c, *c]\n",
    "? [complex, key]\n: value\n? {a: b}\n",
    "\xef\xbb\xbfversion: 1\n%YAML 1.2\n\t- tab\n\"\\x41\\u00e4\\U0001F600\": \xc3\xa4\n",
    "connections:\n  - a.b -> c.d {buffer: 64}\n  - a.b -> c.'d' {x}\nother:\n  - a -> b {c}\n",
    "",
};

const std::vector<std::string> kTexts = {
    "${A}$$$x${EMPTY:-d}${NESTED}",
    "${NO}",
    "${A",
    "${1A:-x}",
    "${A:-${LIST}}",
    "200ms",
    "1.5s",
    "+2 min",
    "-1s",
    "1e9min",
    "imu.acc -> rec.input#1 {buffer: 64, lifo: false}",
    "a.b->c.d.e {buffer: 0}",
    "RecordRecrod",
};

void write(const std::filesystem::path& path, int choice, const std::string& text) {
    std::ofstream(path, std::ios::binary) << static_cast<char>(choice) << text;
}

}  // namespace

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    for (std::size_t i = 0; i < kFiles.size(); ++i)
        for (const int choice : {1, 2})
            write(folder / ("file-" + std::to_string(choice) + "-" + std::to_string(i)), choice,
                  kFiles[i]);
    for (std::size_t i = 0; i < kTexts.size(); ++i)
        write(folder / ("text-" + std::to_string(i)), 0, kTexts[i]);
}
