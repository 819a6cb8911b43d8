#include "tools/convert/Hdf5Object.hpp"

#include <cerrno>
#include <system_error>

#include <Poco/Exception.h>

namespace SensorFileTool {

namespace {

void setScalar(hid_t object, const char* name, hid_t fileType, hid_t memoryType, const void* value,
               const std::string& path) {
    const Hdf5Object space(H5Screate(H5S_SCALAR), &H5Sclose, path);
    const Hdf5Object attribute(
        H5Acreate2(object, name, fileType, space.get(), H5P_DEFAULT, H5P_DEFAULT), &H5Aclose, path);
    requireHdf5(H5Awrite(attribute.get(), memoryType, value), path);
}

}  // namespace

Hdf5Object::Hdf5Object(hid_t id, Closer closer, const std::string& path)
    : id_(id), closer_(closer) {
    requireHdf5(id < 0 ? -1 : 0, path);
}

herr_t Hdf5Object::close() {
    const hid_t id = std::exchange(id_, H5I_INVALID_HID);
    return id < 0 ? 0 : closer_(id);
}

void requireHdf5(herr_t status, const std::string& path) {
    if (status >= 0) return;
    const std::string cause =
        errno == 0 ? "HDF5 failed" : "HDF5: " + std::generic_category().message(errno);
    throw Poco::WriteFileException(path, cause, errno);
}

void setAttribute(hid_t object, const char* name, const std::string& text,
                  const std::string& path) {
    const Hdf5Object type(H5Tcopy(H5T_C_S1), &H5Tclose, path);
    requireHdf5(H5Tset_size(type.get(), H5T_VARIABLE), path);
    requireHdf5(H5Tset_cset(type.get(), H5T_CSET_UTF8), path);
    const char* const characters = text.c_str();
    setScalar(object, name, type.get(), type.get(), &characters, path);
}

void setAttribute(hid_t object, const char* name, double value, const std::string& path) {
    setScalar(object, name, H5T_IEEE_F64LE, H5T_NATIVE_DOUBLE, &value, path);
}

void setAttribute(hid_t object, const char* name, int value, const std::string& path) {
    setScalar(object, name, H5T_STD_I32LE, H5T_NATIVE_INT, &value, path);
}

}  // namespace SensorFileTool
