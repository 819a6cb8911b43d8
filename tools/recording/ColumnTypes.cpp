#include "tools/recording/ColumnTypes.hpp"

#include "tools/common/UsageException.hpp"
#include "tools/recording/ColumnChoice.hpp"
#include "tools/recording/TypeOption.hpp"

#include <optional>

#include <Poco/String.h>
#include <Poco/StringTokenizer.h>

namespace SensorFileTool {

namespace {

void change(std::vector<int>& types, const SensorFile::SensorFileConfig& config,
            const std::string& item) {
    const std::size_t sign = item.rfind('=');
    if (sign == 0 || sign == std::string::npos)
        throw UsageException("--type: '" + item + "' is no column and type such as ACCX=int16");
    const std::optional<int> type = findColumnType(Poco::trim(item.substr(sign + 1)));
    if (!type)
        throw UsageException("--type: there is no type '" + Poco::trim(item.substr(sign + 1)) +
                             "'; there are: " + listColumnTypes());
    for (const std::size_t column :
         chooseColumns(config, Poco::trim(item.substr(0, sign)), "--type"))
        types[column] = *type;
}

}  // namespace

std::vector<int> changeTypes(const SensorFile::SensorFileConfig& config,
                             const std::string& changes) {
    std::vector<int> types;
    for (std::size_t i = 0; i < config.getColumnCount(); ++i)
        types.push_back(config.getColumn(i).getTypeCode());
    const Poco::StringTokenizer list(changes, ",", Poco::StringTokenizer::TOK_TRIM);
    if (!changes.empty())
        for (const std::string& item : list)
            change(types, config, item);
    return types;
}

}  // namespace SensorFileTool
