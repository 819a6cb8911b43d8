# The Debian packages that each task needs; sourced by the scripts at the root.
packages_build=(g++ cmake ninja-build libpoco-dev libeigen3-dev libcli11-dev libyaml-cpp-dev
    nlohmann-json3-dev libfmt-dev)
packages_test=(libgtest-dev libgmock-dev librapidcheck-dev binutils python3-jsonschema python3-yaml)
packages_bench=(libbenchmark-dev python3)
packages_lint=(clang-format-14 clang-tidy-14)
packages_coverage=(gcovr)
packages_fuzz=(clang-14 libclang-rt-14-dev)
