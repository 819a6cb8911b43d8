# The Debian packages that each task needs; sourced by the scripts at the root.
packages_build=(g++ cmake ninja-build libpoco-dev libeigen3-dev libcli11-dev libyaml-cpp-dev
    nlohmann-json3-dev libfmt-dev libhdf5-dev)
packages_test=(libgtest-dev libgmock-dev librapidcheck-dev binutils python3-jsonschema python3-yaml)
# Other zones of time and other locales, under which the same bytes must come.
packages_test+=(locales tzdata)
# What users read exported files with, the shells that complete, and a reader of manual pages.
packages_test+=(python3-numpy python3-pandas python3-h5py python3-scipy zsh fish mandoc)
# Pages of plots are looked at in a browser; what draws in them comes from npm, of which any will do.
packages_test+=(chromium chromium-driver python3-selenium)
command -v npm >/dev/null || packages_test+=(npm)
packages_bench=(libbenchmark-dev python3 python3-pandas)
packages_lint=(clang-format-14 clang-tidy-14 libclang-14-dev llvm-14-dev cppcheck libbenchmark-dev)
packages_coverage=(gcovr)
packages_clang=(clang-14 libclang-rt-14-dev)
