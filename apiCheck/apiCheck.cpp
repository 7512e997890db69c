#include "apiCheck/apiCheck.h"

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <thread>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiHccReqHeader.h"
#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "apiMgmt/apiStub/base/methodReturns/apiSocketError.h"
#include "apiMgmt/apiStub/base/methodReturns/boolMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/compObjectMethodReturn.h"
#include "apiMgmt/common/ipc/gpbComClient.h"
#include "apiMgmt/common/text/safeText.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"

namespace {

using Verdict = CheckResult::Verdict;
using Return = std::unique_ptr<BASEApiMethodReturn>;

constexpr const char* kUnknownObject = "0.987654321";

// What came back: a return, or why there is none.
struct Reply {
    Return outcome;
    bool isConnected = true;
    std::string trouble;
};

Reply exchange(const APICheckPlan& plan, const APIHccReqHeader& header,
               const BASEApiMethod& method) {
    try {
        protoIPCMsg::GPBIPCMsg request;
        protoIPCMsg::GPBIPCMsg reply;
        method.BuildGPBApiRequest(request, &header, "", nullptr, "");
        GPBComClient(GPBComEndpoint("127.0.0.1", plan.port)).SendReceiveMessage(request, reply);
        return {Return(method.ProcessResponse(reply)), true, ""};
    } catch (const APISocketError& failure) {
        const std::string words = failure.GetLogMessage();
        return {nullptr, words.find("Unable to connect") == std::string::npos, words};
    } catch (const GENERALError& failure) {
        return {nullptr, true, failure.GetLogMessage()};
    }
}

// What is behind the texts of the stub for replies that it cannot read.
std::string explain(const std::string& error) {
    if (error == "Invalid content in response message") {
        return "the message is no reply to a command, or its document is empty or no XML that can "
               "be read";
    }
    if (error == "Invalid response in return XML") {
        return "the document needs the root compapi with exactly one ApiMethodReturn, and a "
               "success needs a value (ReturnBool, ReturnObject and so on)";
    }
    return "";
}

std::string refusalText(const std::string& error) {
    return error.empty() ? "refused without a text in Error, so that clients get an empty fault"
                         : "refused: \"" + error + "\"";
}

class Check {
public:
    explicit Check(const APICheckPlan& plan) : m_plan(plan) {}

    std::vector<CheckResult> run() {
        expectTrue("Ping", m_plan.credentials);
        if (m_results.front().verdict == Verdict::Silent) {
            return std::move(m_results);
        }
        expectTrue("Ping without an identity", "");
        expectObjects<APITarnHostCache, APITarnHostCache::APITarnHostCacheGetListMethod,
                      APITarnHostCache::APITarnHostCacheGetMethod>("TarnHostCache");
        expectObjects<APITarnServer, APITarnServer::APITarnServerGetListMethod,
                      APITarnServer::APITarnServerGetMethod>("TarnServer");
        expectRefusal();
        expectIdentityIsAskedFor();
        return std::move(m_results);
    }

private:
    void note(const std::string& question, Verdict verdict, const std::string& words) {
        m_results.push_back({question, verdict, text::oneLine(words)});
    }

    // The return, or null after the reason was noted. The method is made anew on the thread that
    // asks, since that may outlive this call.
    template <class Method>
    Return ask(const std::string& question, const std::string& credentials,
               const std::function<void(Method&)>& fill) {
        APIHccReqHeader header;
        header.schemaVersion = "2.3";
        header.credentials = credentials;
        header.clientAddress = "127.0.0.1";
        std::packaged_task<Reply()> task([plan = m_plan, header, fill] {
            Method method;
            fill(method);
            return exchange(plan, header, method);
        });
        std::future<Reply> answer = task.get_future();
        std::thread(std::move(task)).detach();
        if (answer.wait_for(std::chrono::seconds(m_plan.timeoutSeconds)) !=
            std::future_status::ready) {
            note(question, Verdict::Silent,
                 "no reply within " + std::to_string(m_plan.timeoutSeconds) +
                     " s; the service waits without limit, and its client with it");
            return nullptr;
        }
        Reply reply = answer.get();
        if (reply.outcome == nullptr) {
            note(question, reply.isConnected ? Verdict::Wrong : Verdict::Silent,
                 reply.isConnected ? "what came is no frame with a message: " + reply.trouble
                                   : reply.trouble);
        }
        return std::move(reply.outcome);
    }

    // False after the reason was noted.
    bool isSuccess(const std::string& question, const BASEApiMethodReturn& outcome) {
        if (outcome.GetSuccessful()) {
            return true;
        }
        const std::string why = explain(outcome.GetError());
        note(question, Verdict::Wrong, why.empty() ? refusalText(outcome.GetError()) : why);
        return false;
    }

    void expectTrue(const std::string& question, const std::string& credentials) {
        using Ping = APITarnHostCache::APITarnHostCachePingMethod;
        const Return outcome = ask<Ping>(question, credentials, [](Ping&) {});
        if (outcome == nullptr || !isSuccess(question, *outcome)) {
            return;
        }
        const bool isBool = dynamic_cast<const BOOLMethodReturn*>(outcome.get()) != nullptr;
        note(question, isBool ? Verdict::Usable : Verdict::Odd,
             isBool ? "a success" : "a success with another value than ReturnBool");
    }

    template <class Object, class GetList, class Get>
    void expectObjects(const std::string& name) {
        const std::string question = "GetList of " + name;
        const Return outcome = ask<GetList>(question, m_plan.credentials, [](GetList& method) {
            method.SetFilter(GETListFilter(GETListFilterType::And));
        });
        if (outcome == nullptr || !isSuccess(question, *outcome)) {
            return;
        }
        const std::string first = firstOf<Object>(question, *outcome);
        if (!first.empty()) {
            expectObject<Object, Get>("Get of " + name + " " + first, first);
        }
    }

    // The id of the first object of a list; empty when there is none, or none that can be used.
    template <class Object>
    std::string firstOf(const std::string& question, const BASEApiMethodReturn& outcome) {
        const auto* list = dynamic_cast<const COMPObjectMethodReturn*>(&outcome);
        if (list == nullptr) {
            note(question, Verdict::Wrong, "a success without ReturnObjectArray");
            return "";
        }
        for (const BASEApiObject* object : list->GetObjects()) {
            const auto* own = dynamic_cast<const Object*>(object);
            if (own == nullptr || own->GetInstanceId().empty()) {
                note(question, Verdict::Wrong,
                     "an object of another class, or without InstanceId, is in the list");
                return "";
            }
        }
        const std::size_t count = list->GetObjects().size();
        note(question, Verdict::Usable, std::to_string(count) + " objects");
        return count == 0 ? ""
                          : static_cast<const Object*>(list->GetObjects().front())->GetInstanceId();
    }

    template <class Object, class Get>
    void expectObject(const std::string& question, const std::string& id) {
        const Return outcome =
            ask<Get>(question, m_plan.credentials, [id](Get& method) { method.SetInstanceId(id); });
        if (outcome == nullptr || !isSuccess(question, *outcome)) {
            return;
        }
        const auto* single = dynamic_cast<const COMPObjectMethodReturn*>(outcome.get());
        const auto* object =
            single == nullptr ? nullptr : dynamic_cast<const Object*>(single->GetObject());
        if (object == nullptr) {
            note(question, Verdict::Wrong, "a success without a ReturnObject of that class");
        } else if (object->GetInstanceId() != id) {
            note(question, Verdict::Wrong, "it is object " + object->GetInstanceId());
        } else {
            note(question, Verdict::Usable, "the object");
        }
    }

    void expectRefusal() {
        using Get = APITarnHostCache::APITarnHostCacheGetMethod;
        const std::string question = "Get of an object that there is not";
        const Return outcome = ask<Get>(question, m_plan.credentials,
                                        [](Get& method) { method.SetInstanceId(kUnknownObject); });
        if (outcome == nullptr) {
            return;
        }
        const std::string why = explain(outcome->GetError());
        if (outcome->GetSuccessful()) {
            note(question, Verdict::Odd, "a success; it should be refused");
        } else if (!why.empty()) {
            note(question, Verdict::Wrong, why);
        } else {
            note(question, outcome->GetError().empty() ? Verdict::Odd : Verdict::Usable,
                 refusalText(outcome->GetError()));
        }
    }

    void expectIdentityIsAskedFor() {
        using GetList = APITarnHostCache::APITarnHostCacheGetListMethod;
        const std::string question = "GetList without an identity";
        const Return outcome = ask<GetList>(question, "", [](GetList& method) {
            method.SetFilter(GETListFilter(GETListFilterType::And));
        });
        if (outcome == nullptr) {
            return;
        }
        const std::string why = explain(outcome->GetError());
        if (outcome->GetSuccessful()) {
            note(question, Verdict::Odd, "served; the service relies on the array to refuse it");
        } else {
            note(question, why.empty() ? Verdict::Usable : Verdict::Wrong,
                 why.empty() ? "refused: \"" + outcome->GetError() + "\"" : why);
        }
    }

    const APICheckPlan m_plan;
    std::vector<CheckResult> m_results;
};

}  // namespace

std::vector<CheckResult> checkApiManager(const APICheckPlan& plan) {
    return Check(plan).run();
}
