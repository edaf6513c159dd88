# Sourced by the other scripts: makes sure the build tools are on the machine.
# As root, whatever is missing is installed with apt-get (Debian 12); as
# another user the missing packages are named and the script stops.
korvex_need_packages() {
  local missing=()
  command -v g++ >/dev/null || missing+=(g++)
  command -v cmake >/dev/null || missing+=(cmake)
  command -v ninja >/dev/null || missing+=(ninja-build)
  command -v python3 >/dev/null || missing+=(python3)
  command -v openssl >/dev/null || missing+=(openssl)
  command -v pkg-config >/dev/null || missing+=(pkg-config)
  command -v clang++ >/dev/null || missing+=(clang)
  [ -e /usr/include/openssl/evp.h ] || missing+=(libssl-dev)
  [ -e /usr/include/gtest/gtest.h ] || missing+=(libgtest-dev)
  [ -e /usr/include/gmock/gmock.h ] || missing+=(libgmock-dev)
  [ -e /usr/include/benchmark/benchmark.h ] || missing+=(libbenchmark-dev)
  ls /usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a >/dev/null 2>&1 ||
    missing+=(libclang-rt-14-dev)
  [ ${#missing[@]} -eq 0 ] && return 0
  if [ "$(id -u)" = 0 ]; then
    echo "installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq && apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
  else
    echo "missing packages: ${missing[*]} (run as root, or: sudo apt-get install ${missing[*]})" >&2
    return 1
  fi
}
