// How a method of the management API is run, and what the client sees of its outcome.

#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod.h"
#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "apiMgmt/apiStub/base/methodReturns/apiSocketError.h"
#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"
#include "apiMgmt/webservices/sanService/sanService.h"

namespace {

// While it lives, a module that wants to know sees that the array is being asked.
class ArrayCall {
public:
    ArrayCall(const soapRequestReport* report, const std::string& cluster) : m_report(report) {
        if (m_report != nullptr) {
            m_report->cluster(cluster.c_str());
            m_report->asksArray(1);
        }
    }
    ~ArrayCall() {
        if (m_report != nullptr) {
            m_report->asksArray(0);
        }
    }
    ArrayCall(const ArrayCall&) = delete;
    ArrayCall& operator=(const ArrayCall&) = delete;

private:
    const soapRequestReport* m_report;
};

void reportEnd(const soapRequestReport* report, SoapReportedEnd end) {
    if (report != nullptr) {
        report->ended(end);
    }
}

}  // namespace

// The logger counts for the whole process. Whichever request comes next reports the lines lost so
// far, each of them once.
void SANService::ReportLostLines() {
    static std::atomic<std::uint64_t> told{0};
    const std::uint64_t lost = SimpleLogger::lostLines();
    std::uint64_t before = told.load(std::memory_order_relaxed);
    while (lost > before && !told.compare_exchange_weak(before, lost, std::memory_order_relaxed)) {
    }
    if (lost > before) {
        m_report->lostLogLines(static_cast<std::uint32_t>(lost - before));
    }
}

const BASEApiMethodReturn* SANService::ExecuteMethod(
    const BASEApiMethod& method, const std::map<std::string, std::string>* args) const {
    const ArrayCall asking(m_report, m_header.hccId);
    try {
        return method.Execute(&m_header, args);
    } catch (const APIMethodError& failure) {
        ServiceLog::Write(
            ServiceLog::kApiError,
            STRINGUtil::FormatStr("API exception serving san service request. msg(%s)",
                                  failure.GetLogMessage().c_str()));
    } catch (const APISocketError& failure) {
        ServiceLog::Write(
            ServiceLog::kSocketError,
            STRINGUtil::FormatStr("Connection error serving san service request. msg(%s)",
                                  failure.GetLogMessage().c_str()));
    } catch (const std::exception& failure) {
        ServiceLog::Write(
            ServiceLog::kGeneralError,
            STRINGUtil::FormatStr(
                "General exception processing san service request(%s::%s). msg: %s",
                method.GetObjectName().c_str(), method.GetMethodName().c_str(), failure.what()));
    }
    return nullptr;
}

SanApi::ns1__resultObject* SANService::AllocSoapResultObject() {
    SanApi::ns1__resultObject& result = RequireAllocated(
        SanApi::soap_instantiate_ns1__resultObject(this, -1, nullptr, nullptr, nullptr));
    result.defaultMsg = AllocSoapString("");
    result.catalogNumber = 0;
    result.resultCode = 0;
    return &result;
}

int SANService::ParseXMLResponse(SanApi::ns1__resultObject** result,
                                 const BASEApiMethodReturn* ret) {
    if (ret == nullptr) {
        ServiceLog::Write(ServiceLog::kNoReturn);
        reportEnd(m_report, SOAP_NO_ANSWER);
        return soap_receiverfault("Received Invalid/NULL response from tarn", "");
    }
    if (ret->GetSuccessful()) {
        *result = AllocSoapResultObject();
        return SOAP_OK;
    }
    reportEnd(m_report, ret->GetErrorCode() == ErrorStateEnum::ParsingError
                            ? SOAP_NO_ANSWER
                            : SOAP_REFUSED_BY_ARRAY);
    return soap_receiverfault(ret->GetError().c_str(), "");
}

int SANService::RunMethod(const BASEApiMethod& method, SanApi::ns1__resultObject** result,
                          const std::map<std::string, std::string>* args) {
    const std::unique_ptr<const BASEApiMethodReturn> ret(ExecuteMethod(method, args));
    return ParseXMLResponse(result, ret.get());
}
