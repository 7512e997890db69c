#pragma once

#include <iosfwd>
#include <string>

#include "apiMgmt/apiStub/base/methodReturns/apiApiMethodReturn.h"

class BASEApiMethod;

/// The outcome of one API method: the status of the reply and, in the derived classes, the
/// value that came with it. BASEApiMethod::Execute makes exactly one per call, and its caller
/// owns and deletes it.
///
///     const std::unique_ptr<BASEApiMethodReturn> outcome(method.Execute(&header, nullptr));
///     if (outcome->GetSuccessful())
///         if (const auto* text = dynamic_cast<STRINGMethodReturn*>(outcome.get()))
///             use(text->GetValue());
///
/// Method returns raise nothing.
class BASEApiMethodReturn : public APIApiMethodReturn {
public:
    /// Successful, error state 1, empty texts.
    BASEApiMethodReturn();
    /// The same with the given success flag. `method` is the one that produced the return; it
    /// may be null, is not owned, and must live as long as the return is used.
    explicit BASEApiMethodReturn(bool successful, BASEApiMethod* method = nullptr);
    BASEApiMethodReturn(bool successful, ErrorStateEnum state, const std::string& error,
                        const std::string& localizedError, const std::string& errorDetail,
                        BASEApiMethod* method = nullptr);
    ~BASEApiMethodReturn() override;
    BASEApiMethodReturn(const BASEApiMethodReturn&) = delete;
    BASEApiMethodReturn& operator=(const BASEApiMethodReturn&) = delete;

    /// The value as the reply element that carries it; empty for a status without a value.
    virtual std::string GetReturnString(ObjectReturnEncodeEnum encode) const;

    /// The whole return as a reply document, which BASEApiMethod::ProcessResponse reads back
    /// to the same return. Notes `encode` in ReturnObjectEncode. The status is written as XML
    /// elements always; `encode` decides how a COMPObjectMethodReturn writes its objects.
    std::string ToString(ObjectReturnEncodeEnum encode);

    const BASEApiMethod* GetMethod() const { return m_method; }

protected:
    /// `value` inside the element `tag`; the value is written as it is.
    static std::string Element(const char* tag, const std::string& value);

private:
    BASEApiMethod* m_method = nullptr;

    void Initialize();
    void Initialize(bool successful, ErrorStateEnum state, const std::string& error,
                    const std::string& localizedError, const std::string& errorDetail);
};

/// Lines for a person: success, the error of a failure, the method when one is set.
std::ostream& operator<<(std::ostream& stream, const BASEApiMethodReturn& outcome);
