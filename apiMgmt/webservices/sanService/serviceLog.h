#pragma once

#include <string>

#include "apiMgmt/common/utils/simpleLogger.h"
#include "apiMgmt/common/utils/stringUtil.h"

/// The log lines of the service.
///
/// Texts, functions and line numbers are an interface with operators, who filter and count by
/// them; so they are facts of this table and not of where a call happens to stand today. The
/// page docs/logging.md lists them.
namespace ServiceLog {

/// One kind of line: where it is said to come from, and at which level it is written.
struct Entry {
    SimpleLogger::LOGLevel level;
    const char* function;
    int line;
};

/// A line whose text never varies.
struct FixedEntry : Entry {
    const char* text;
};

inline constexpr char kCategory[] = "SANService";
inline constexpr char kSource[] = "apiMgmt/webservices/sanService/sanService";
inline constexpr char kIdentity[] = "SANService";

// How to add a line: a row here, the same row in docs/logging.md, and Write() where it happens.
// A text with placeholders stands at its one call; its row is then an Entry.
// clang-format off
//                                       level                      function                   line  text
inline constexpr FixedEntry kServing{   {SimpleLogger::LOGDebug,   "SANServiceHandler",        96}, "Serving SOAP request..."};
inline constexpr FixedEntry kServed{    {SimpleLogger::LOGDebug,   "SANServiceHandler",        98}, "Done serving SOAP request"};
inline constexpr FixedEntry kNoAddresses{{SimpleLogger::LOGError,  "SANService",              134}, "Unable to determine connection IPs from Apache's pRqConf->r->connection struct"};
inline constexpr Entry kEscaped{         SimpleLogger::LOGError,   "dispatch",                181};
inline constexpr Entry kRefused{         SimpleLogger::LOGWarning, "dispatch",                187};
inline constexpr FixedEntry kValidating{{SimpleLogger::LOGWarning, "ParseRequestHeaders",     197}, "Validating soap header"};
inline constexpr FixedEntry kAddHcc{    {SimpleLogger::LOGWarning, "AddHccToSan",             274}, "Serving AddHccToSan request"};
inline constexpr FixedEntry kAddHccSkip{{SimpleLogger::LOGWarning, "AddHccToSan",             313}, "AddSan request: IpAddress information not specified"};
inline constexpr FixedEntry kRemoveHcc{ {SimpleLogger::LOGWarning, "RemoveHccFromSan",        340}, "Serving RemoveHccFromSan request"};
inline constexpr FixedEntry kRename{    {SimpleLogger::LOGWarning, "RenameHccInSan",          365}, "Serving RenameHccInSan request"};
inline constexpr FixedEntry kAddServer{ {SimpleLogger::LOGWarning, "AddServer",               381}, "Serving AddServer request"};
inline constexpr FixedEntry kAddServerSkip{{SimpleLogger::LOGWarning, "AddServer",            431}, "AddSan request: IpAddress information not specified"};
inline constexpr FixedEntry kRemoveServer{{SimpleLogger::LOGWarning, "RemoveServer",          494}, "Serving RemoveServer request"};
inline constexpr FixedEntry kAttach{    {SimpleLogger::LOGWarning, "HccAttachVolume",         520}, "Serving HccAttachVolume request"};
inline constexpr FixedEntry kDetach{    {SimpleLogger::LOGWarning, "HccDetachVolume",         574}, "Serving HccDetachVolume request"};
inline constexpr FixedEntry kAvailable{ {SimpleLogger::LOGWarning, "MakeDataAvailable",       602}, "Serving MakeDataAvailable request"};
inline constexpr FixedEntry kUnavailable{{SimpleLogger::LOGWarning, "MakeDataUnavailable",    631}, "Serving MakeDataUnavailable request"};
inline constexpr FixedEntry kFlushed{   {SimpleLogger::LOGWarning, "FlushComplete",           660}, "Serving FlushComplete request"};
inline constexpr FixedEntry kPrepared{  {SimpleLogger::LOGWarning, "SnapshotPrepareComplete", 691}, "Serving SnapshotPrepareComplete request"};
inline constexpr FixedEntry kNewCfm{    {SimpleLogger::LOGWarning, "NewPrimaryCfmAddresses",  719}, "Serving NewPrimaryCfmAddresses request"};
inline constexpr FixedEntry kNewCfmSkip{{SimpleLogger::LOGWarning, "NewPrimaryCfmAddresses",  752}, "AddSan request: IpAddress information not specified"};
inline constexpr FixedEntry kPing{      {SimpleLogger::LOGWarning, "Ping",                    777}, "Serving Ping request"};
inline constexpr FixedEntry kNoReturn{  {SimpleLogger::LOGWarning, "ParseXMLResponse",        836}, "Received NULL response"};
inline constexpr Entry kApiError{        SimpleLogger::LOGWarning, "ExecuteMethod",           863};
inline constexpr Entry kSocketError{     SimpleLogger::LOGWarning, "ExecuteMethod",           867};
inline constexpr Entry kGeneralError{    SimpleLogger::LOGWarning, "ExecuteMethod",           871};
// clang-format on

/// Writes @p message as the line that @p entry stands for.
inline void Write(const Entry& entry, const std::string& message) {
    static const std::string category(kCategory);
    SimpleLogger::DoLog(entry.level, kSource, entry.function, entry.line, category, message);
}

/// Writes a line of fixed text. A level that the mask leaves out costs its test and no more.
inline void Write(const FixedEntry& entry) {
    if ((entry.level & logLevelMask.load(std::memory_order_relaxed)) != 0) {
        Write(entry, std::string(entry.text));
    }
}

}  // namespace ServiceLog
