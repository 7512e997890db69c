#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiAssociation.h"
#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"
#include "apiMgmt/apiStub/base/apiObjects/base/getListApiMethod.h"
#include "apiMgmt/apiStub/base/apiObjects/base/tarnStatusBaseApiObject.h"
#include "apiMgmt/apiStub/base/filters/filterTimeEnum.h"

// One class of each sort, with one attribute of each kind: what the tests of the model and its
// benchmarks work on.

class APISampleRecord : public BASEApiMethodObject {
    API_METHOD_OBJECT(SampleRecord);
    // clang-format off
    API_ATTRIBUTE(Address, "Address", IPV4ADDRESS, 20);
    API_ATTRIBUTE(Port,    "Port",    INT,         20, AtLeast(0));
    API_ATTRIBUTE(Comment, "Comment", STRING,      20, NoBounds);
    // clang-format on
    API_ATTRIBUTE_LIST(Address, Port, Comment);
};

/// An object with few attributes.
class APIThing : public BASEApiObject {
    API_OBJECT(Thing);
    API_ATTRIBUTE(Name, "Name", STRING, 20, NoBounds);
    API_ATTRIBUTE(Notes, "Notes", STRING, 20, NoBounds);
    API_ATTRIBUTE_LIST_THEN(BASEApiObject, Name, Notes);
};

class APISample : public TARNStatusBaseApiObject {
    API_OBJECT(Sample);
    // clang-format off
    API_ATTRIBUTE(Truth,   "Truth",   BOOLEAN,                      20);
    API_ATTRIBUTE(Number,  "Number",  INT,                          7,  Between(1, 4095));
    API_ATTRIBUTE(Text,    "Text",    STRING,                       20, Between(1, 8).Forbidding("<>&"));
    API_ATTRIBUTE(Ip,      "Ip",      IPV4ADDRESS,                  20);
    API_ATTRIBUTE(Enum,    "Enum",    ENUM<FilterTimeEnum>,         20);
    API_ATTRIBUTE(Mask,    "Mask",    ENUMMASK<FilterTimeEnum>,     20);
    API_ATTRIBUTE(Texts,   "Texts",   STRINGARRAY,                  20);
    API_ATTRIBUTE(Parent,  "Parent",  OBJECT,                       20);
    API_ATTRIBUTE(Parents, "Parents", OBJECTARRAY,                  20);
    API_ATTRIBUTE(Record,  "Record",  METHODOBJECT<APISampleRecord>, 20);
    API_ATTRIBUTE(Records, "Records", METHODOBJECTARRAY<APISampleRecord>, 20);
    API_ATTRIBUTE(Filter,  "Filter",  GETLISTFILTER,                20);
    API_ATTRIBUTE(Time,    "Time",    DATETIME,                     20);
    // clang-format on
    API_ATTRIBUTE_LIST_THEN(TARNStatusBaseApiObject, Truth, Number, Text, Ip, Enum, Mask, Texts,
                            Parent, Parents, Record, Records, Filter, Time);

    class APISampleAddMethod;
    class APISampleGetListMethod;
    class APISamplePartsAssociation;
};

class APISample::APISampleAddMethod : public BASEApiMethod {
    API_METHOD(Sample, Add, true, VolumeManager);
    // clang-format off
    API_ATTRIBUTE(Name,    "Name",    STRING,                             20, Between(1, 3));
    API_ATTRIBUTE(Id,      "Id",      STRING,                             20, NoBounds);
    API_ATTRIBUTE(Key,     "Key",     STRING,                             20, NoBounds);
    API_ATTRIBUTE(Host,    "Host",    STRING,                             20, NoBounds);
    API_ATTRIBUTE(System,  "System",  STRING,                             20, NoBounds);
    API_ATTRIBUTE(Count,   "Count",   INT,                                20, AtLeast(0));
    API_ATTRIBUTE(Records, "Records", METHODOBJECTARRAY<APISampleRecord>, 20);
    API_ATTRIBUTE(Others,  "Others",  METHODOBJECTARRAY<APISampleRecord>, 20);
    API_ATTRIBUTE(Hidden,  "Hidden",  BOOLEAN,                            20);
    // clang-format on
    API_ATTRIBUTE_LIST(Name, Id, Key, Host, System, Count, Records, Others);
    API_REQUIRED(Id, Name, Hidden);
    API_UNWRITTEN(Hidden);

    void ValidateRequiredOrAttributes() const override { RequireOneOf({"Host", "System"}); }
};

class APISample::APISampleGetListMethod : public GETLISTApiMethod {
    API_GETLIST_METHOD(Sample, false, Reporter);
    API_ATTRIBUTE_OVERRIDE(Filter, "Filter", GETLISTFILTER, 25);
    API_ATTRIBUTE_LIST(Filter);
    API_REQUIRED(Filter);
};

class APISample::APISamplePartsAssociation : public BASEApiAssociation {
    API_ASSOCIATION(Sample, Parts);
};

/// Reads every value through its typed getter and writes it back.
inline void rewrite(APISample& sample) {
    sample.SetTruth(sample.GetTruth());
    sample.SetNumber(sample.GetNumber());
    sample.SetText(sample.GetText());
    sample.SetIp(sample.GetIp());
    sample.SetEnum(sample.GetEnum());
    sample.SetMask(sample.GetMask());
    sample.SetTexts(sample.GetTexts());
    if (const auto parent = sample.GetParent()) {
        sample.SetParent(*parent);
    }
    sample.SetParents(sample.GetParents());
    if (const auto record = sample.GetRecord()) {
        sample.SetRecord(*record);
    }
    const auto records = sample.GetRecords();
    std::vector<const BASEApiMethodObject*> pointers;
    for (const auto& record : records) {
        pointers.push_back(record.get());
    }
    sample.SetRecords(pointers);
    sample.SetFilter(sample.GetFilter());
    sample.SetTime(sample.GetTime());
}
