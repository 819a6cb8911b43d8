#include "tools/convert/Hdf5Sink.hpp"

#include "sensorfile/ColumnType.hpp"
#include "tools/convert/ColumnBlock.hpp"
#include "tools/convert/ExportNames.hpp"
#include "tools/convert/Hdf5Object.hpp"
#include "tools/recording/CalibRecords.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <string>
#include <vector>

#include <Poco/DateTimeFormatter.h>
#include <fmt/format.h>

namespace SensorFileTool {

namespace {

constexpr const char* kCalibGroup = "calibration";

std::string isoTime(const Poco::DateTime& time) {
    return Poco::DateTimeFormatter::format(time, "%Y-%m-%dT%H:%M:%SZ");
}

std::string versionText(std::uint16_t version) {
    return fmt::format("0x{:04x}", version);
}

/// A path would be made of slashes, and a point alone is the group itself.
std::string linkName(const std::string& name) {
    std::string link = plainName(name);
    std::replace(link.begin(), link.end(), '/', '_');
    return link == "." ? "_" : link;
}

std::vector<std::string> linkNames(std::vector<std::string> names) {
    std::transform(names.begin(), names.end(), names.begin(), linkName);
    return uniqueNames(names, {kCalibGroup});
}

/// What NumPy's readers take for a bool.
Hdf5Object makeBoolType(const std::string& path) {
    Hdf5Object type(H5Tenum_create(H5T_STD_I8LE), &H5Tclose, path);
    const std::array<signed char, 2> values{0, 1};
    requireHdf5(H5Tenum_insert(type.get(), "FALSE", &values[0]), path);
    requireHdf5(H5Tenum_insert(type.get(), "TRUE", &values[1]), path);
    return type;
}

hid_t plainType(int type) {
    switch (type) {
        case SensorFile::kUChar:
        case SensorFile::kUInt8:
            return H5T_STD_U8LE;
        case SensorFile::kChar:
        case SensorFile::kInt8:
            return H5T_STD_I8LE;
        case SensorFile::kUShort:
        case SensorFile::kUInt16:
            return H5T_STD_U16LE;
        case SensorFile::kShort:
        case SensorFile::kInt16:
            return H5T_STD_I16LE;
        case SensorFile::kUInt32:
            return H5T_STD_U32LE;
        case SensorFile::kInt32:
            return H5T_STD_I32LE;
        case SensorFile::kUInt64:
            return H5T_STD_U64LE;
        case SensorFile::kInt64:
            return H5T_STD_I64LE;
        case SensorFile::kFloat:
            return H5T_IEEE_F32LE;
        default:
            return H5T_IEEE_F64LE;
    }
}

class Hdf5Sink : public RowSink {
 public:
    explicit Hdf5Sink(const ExportPlan& plan)
        : path_(plan.path), config_(plan.config), block_(plan.config) {
        // At the program's end the library would crash over a file that it could not close, as on
        // a full disk.
        H5dont_atexit();
        H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
        errno = 0;
        createFile();
        describeFile(plan);
        if (config_.getCalibCount() > 0) writeRecords();
    }

    void write(const Row& row) override {
        block_.add(row);
        if (block_.isFull()) flush();
    }

    void finish() override {
        flush();
        datasets_.clear();
        require(H5Fflush(file_.get(), H5F_SCOPE_GLOBAL));
        require(file_.close());
    }

 private:
    void require(herr_t status) { requireHdf5(status, path_); }
    Hdf5Object own(hid_t id, Hdf5Object::Closer closer) { return {id, closer, path_}; }

    /// Names are listed in the order in which they were given.
    void createFile() {
        const Hdf5Object properties = own(H5Pcreate(H5P_FILE_CREATE), &H5Pclose);
        require(H5Pset_link_creation_order(properties.get(),
                                           H5P_CRT_ORDER_TRACKED | H5P_CRT_ORDER_INDEXED));
        linkProperties_ = own(H5Pcreate(H5P_LINK_CREATE), &H5Pclose);
        require(H5Pset_char_encoding(linkProperties_.get(), H5T_CSET_UTF8));
        file_ =
            own(H5Fcreate(path_.c_str(), H5F_ACC_TRUNC, properties.get(), H5P_DEFAULT), &H5Fclose);
    }

    void describeFile(const ExportPlan& plan) {
        setAttribute(file_.get(), "format", "sensorfile-h5-1", path_);
        setAttribute(file_.get(), "encoding", plan.encoding, path_);
        if (config_.isCalibOnly()) return;
        setAttribute(file_.get(), "created", isoTime(config_.getCreationTime()), path_);
        setAttribute(file_.get(), "frequency_hz", config_.getSampleFrequency(), path_);
        setAttribute(file_.get(), "header_version", versionText(config_.getHeaderVersion()), path_);
    }

    void writeRecords() {
        const std::vector<CalibRecord> records = listRecords(config_);
        const Hdf5Object properties = own(H5Pcreate(H5P_GROUP_CREATE), &H5Pclose);
        require(H5Pset_link_creation_order(properties.get(),
                                           H5P_CRT_ORDER_TRACKED | H5P_CRT_ORDER_INDEXED));
        const Hdf5Object group = own(H5Gcreate2(file_.get(), kCalibGroup, linkProperties_.get(),
                                                properties.get(), H5P_DEFAULT),
                                     &H5Gclose);
        setAttribute(group.get(), "created", isoTime(config_.getCalibTime()), path_);
        setAttribute(group.get(), "format", config_.getCalibFormat(), path_);
        setAttribute(group.get(), "version", versionText(config_.getCalibVersion()), path_);
        std::vector<std::string> names;
        names.reserve(records.size());
        for (const CalibRecord& record : records)
            names.push_back(record.name);
        names = linkNames(names);
        for (std::size_t i = 0; i < records.size(); ++i)
            writeRecord(group.get(), names[i], records[i]);
    }

    void writeRecord(hid_t group, const std::string& name, const CalibRecord& record) {
        using RowByRow = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
        const RowByRow values = record.matrix;
        const std::array<hsize_t, 2> size{static_cast<hsize_t>(values.rows()),
                                          static_cast<hsize_t>(values.cols())};
        const Hdf5Object space = own(H5Screate_simple(2, size.data(), nullptr), &H5Sclose);
        const hid_t type = record.type == "int32" ? H5T_STD_I32LE : H5T_IEEE_F64LE;
        const Hdf5Object properties = makeDatasetProperties();
        const Hdf5Object dataset =
            own(H5Dcreate2(group, name.c_str(), type, space.get(), linkProperties_.get(),
                           properties.get(), H5P_DEFAULT),
                &H5Dclose);
        if (values.size() > 0)
            require(H5Dwrite(dataset.get(), H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT,
                             values.data()));
        setAttribute(dataset.get(), "name", plainName(record.name), path_);
        setAttribute(dataset.get(), "type", record.type, path_);
    }

    /// Without the time of making: the same recording gives the same file.
    Hdf5Object makeDatasetProperties() {
        Hdf5Object properties = own(H5Pcreate(H5P_DATASET_CREATE), &H5Pclose);
        require(H5Pset_obj_track_times(properties.get(), 0));
        return properties;
    }

    /// A chunk is what the block holds when it is written first: all rows of a short recording.
    void createDatasets() {
        const std::vector<std::string> names = linkNames(columnNames(config_));
        const hsize_t none = 0;
        const hsize_t any = H5S_UNLIMITED;
        const hsize_t chunk = std::max<hsize_t>(block_.getRowCount(), 1);
        const Hdf5Object space = own(H5Screate_simple(1, &none, &any), &H5Sclose);
        const Hdf5Object properties = makeDatasetProperties();
        require(H5Pset_chunk(properties.get(), 1, &chunk));
        const Hdf5Object access = own(H5Pcreate(H5P_DATASET_ACCESS), &H5Pclose);
        require(H5Pset_chunk_cache(access.get(), 1, 0, 1.0));  // chunks are written once, as wholes
        boolType_ = makeBoolType(path_);
        for (std::size_t i = 0; i < names.size(); ++i) {
            datasets_.push_back(
                own(H5Dcreate2(file_.get(), names[i].c_str(), typeOf(i), space.get(),
                               linkProperties_.get(), properties.get(), access.get()),
                    &H5Dclose));
            describeColumn(i);
        }
    }

    void describeColumn(std::size_t index) {
        const hid_t dataset = datasets_[index].get();
        const SensorFile::Column& column = config_.getColumn(index);
        setAttribute(dataset, "name", plainName(column.getName()), path_);
        setAttribute(dataset, "type", column.getTypeName(), path_);
        setAttribute(dataset, "index", static_cast<int>(index), path_);
    }

    [[nodiscard]] hid_t typeOf(std::size_t column) const {
        const int type = config_.getColumn(column).getTypeCode();
        return type == SensorFile::kBool ? boolType_.get() : plainType(type);
    }

    void flush() {
        errno = 0;
        if (datasets_.empty()) createDatasets();
        if (block_.getRowCount() == 0) return;
        for (std::size_t i = 0; i < datasets_.size(); ++i)
            appendTo(i);
        rowCount_ += block_.getRowCount();
        block_.clear();
    }

    void appendTo(std::size_t column) {
        const hid_t dataset = datasets_[column].get();
        const hsize_t first = rowCount_;
        const hsize_t count = block_.getRowCount();
        const hsize_t size = first + count;
        require(H5Dset_extent(dataset, &size));
        const Hdf5Object file = own(H5Dget_space(dataset), &H5Sclose);
        require(H5Sselect_hyperslab(file.get(), H5S_SELECT_SET, &first, nullptr, &count, nullptr));
        const Hdf5Object memory = own(H5Screate_simple(1, &count, nullptr), &H5Sclose);
        require(H5Dwrite(dataset, typeOf(column), memory.get(), file.get(), H5P_DEFAULT,
                         block_.getBytes(column).data()));
    }

    std::string path_;
    SensorFile::SensorFileConfig config_;
    ColumnBlock block_;
    Hdf5Object file_;
    Hdf5Object linkProperties_;
    Hdf5Object boolType_;
    std::vector<Hdf5Object> datasets_;
    hsize_t rowCount_ = 0;
};

}  // namespace

std::unique_ptr<RowSink> makeHdf5Sink(const ExportPlan& plan) {
    return std::make_unique<Hdf5Sink>(plan);
}

}  // namespace SensorFileTool
