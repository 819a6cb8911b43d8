#pragma once

#include <hdf5.h>
#include <string>
#include <utility>

namespace SensorFileTool {

/// An identifier of the HDF5 library that is closed with this object.
class Hdf5Object {
 public:
    using Closer = herr_t (*)(hid_t);

    Hdf5Object() = default;
    /// @param id  negative if the library failed
    /// @throws Poco::WriteFileException naming the path
    Hdf5Object(hid_t id, Closer closer, const std::string& path);
    Hdf5Object(Hdf5Object&& other) noexcept
        : id_(std::exchange(other.id_, H5I_INVALID_HID)), closer_(other.closer_) {}
    Hdf5Object& operator=(Hdf5Object&& other) noexcept {
        std::swap(id_, other.id_);
        std::swap(closer_, other.closer_);
        return *this;
    }
    ~Hdf5Object() { close(); }

    [[nodiscard]] hid_t get() const { return id_; }
    /// @return negative if the library failed
    herr_t close();

 private:
    hid_t id_ = H5I_INVALID_HID;
    Closer closer_ = nullptr;
};

/// @param status  negative if the library failed
/// @throws Poco::WriteFileException naming the path
void requireHdf5(herr_t status, const std::string& path);

/// Attributes of a file, a group or a dataset.
void setAttribute(hid_t object, const char* name, const std::string& text, const std::string& path);
void setAttribute(hid_t object, const char* name, double value, const std::string& path);
void setAttribute(hid_t object, const char* name, int value, const std::string& path);

}  // namespace SensorFileTool
