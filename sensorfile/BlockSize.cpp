#include "sensorfile/BlockSize.hpp"

#include <atomic>

namespace SensorFile {
namespace {

std::atomic<std::size_t> blockSize{std::size_t{256} * 1024};

}  // namespace

std::size_t BlockSize::current() {
    return blockSize.load();
}

std::size_t BlockSize::replace(std::size_t bytes) {
    return blockSize.exchange(bytes);
}

}  // namespace SensorFile
