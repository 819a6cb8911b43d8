/// Plans of large flow files: deep ones, wide ones, and names that are compared with each other.

#include "fuzz/Seeds.hpp"

#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Plan = std::pair<const char*, std::string>;

// "\1" begins and ends what is repeated, "\2" is its number.
const std::vector<Plan> kPlans = {
    {"lists-in-lists", "\1[\1"},
    {"maps-in-maps", "\1{\1"},
    {"items-in-items", "\1- \1"},
    {"keys-in-keys", "\1? \1"},
    {"anchors-in-anchors", "\1[&a 1, \1"},
    {"anchors-of-much",
     "a: &a [&b [&c [&d [&e [&f [&g [&h [\1x,\1]]]]]]]]\nb: &i [&j [&k [*a, *b, *c]]]\n"},
    {"text-in-anchors", "a: &a [&b [&c [&d [&e [&f [&g [\"\1x\1\"]]]]]]]\nb: [*a, *b]\n"},
    {"alias-bomb",
     "a: &a [x,x,x,x,x,x,x,x]\nb: &b [*a,*a,*a,*a,*a,*a,*a,*a]\nc: &c [*b,*b,*b,*b,*b,*b,*b,*b]\n"
     "d: &d [*c,*c,*c,*c,*c,*c,*c,*c]\ne: &e [*d,*d,*d,*d,*d,*d,*d,*d]\nf: [\1*e,\1]\n"},
    {"alias-chain", "- &a0 x\n\1- &a\2 [*a0]\n\1"},
    {"long-text", "a: \1x\1"},
    {"long-key", "\1k\1: v\n"},
    {"long-quoted", "\"\1\\n\1"},
    {"long-folded", "a: >\n\1  x\n\n\1"},
    {"long-comment", "\1#\1"},
    {"long-anchor", "&\1a\1"},
    {"long-tag", "!<\1a\1"},
    {"blanks", "\1 \1"},
    {"tabs", "\1\t\1"},
    {"lines", "\1\n\1"},
    {"directives", "\1%TAG !e\2! tag:x\n\1"},
    {"documents", "\1--- a\n\1"},
    {"colons", "\1: \1"},
    {"same-keys", "\1k: v\n\1"},
    {"keys", "\1k\2: v\n\1"},
    {"variables", "a: \1${LONG}\1"},
    {"open-variables", "a: \1${\1"},
    {"properties", "version: 1\nfilters:\n- name: a\n  class: b\n  properties:\n\1  - p\2: 1\n\1"},
    {"connections",
     "version: 1\nfilters: [{name: a, class: b}]\nconnections:\n\1- a.b -> a.c\2 {buffer: 64}\n\1"},
    {"settings",
     "version: 1\nfilters: [{name: a, class: b}]\nconnections:\n- a.b -> a.c "
     "{\1buffer: 64,\1 lifo: true}\n"},
    {"script",
     "version: 1\nfilters: [{name: a, class: b}]\nscript:\n\1- {at: \2ms, set: {a.b: 1}}\n\1"},
    {"unknown-filters",
     "version: 1\nfilters:\n\1- {name: f\2xxxxxxxxxxxxxxxxxxxxxxxx, class: c}\n"
     "\1connections:\n\1- g\2xxxxxxxxxxxxxxxxxxxxxxx.a -> h\2xx.b\n\1"},
    {"unknown-layouts",
     "version: 1\nlayouts:\n\1- l\2xxx\n\1filters:\n"
     "\1- {name: f\2, class: c, layout: k\2xxx}\n\1"},
    {"long-names",
     "version: 1\nfilters:\n- {name: \1n\1, class: c}\nconnections:\n\1- a.b -> c.d\n\1"},
};

}  // namespace

void Fuzz::writeSeeds(const std::filesystem::path& folder) {
    for (const auto& [name, plan] : kPlans)
        std::ofstream(folder / name, std::ios::binary) << plan;
}
