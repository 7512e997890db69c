#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod.h"

/// A method that returns the objects that pass a list filter.
///
///     class APITarnServerGetListMethod : public GETLISTApiMethod {
///         API_GETLIST_METHOD(TarnServer, false, Reporter);
///         API_ATTRIBUTE_OVERRIDE(Filter, "Filter", GETLISTFILTER, 25);   // the two accessors
///         API_ATTRIBUTE_LIST(Filter);
///         API_REQUIRED(Filter);
///     };
class GETLISTApiMethod : public BASEApiMethod {
public:
    GETLISTApiMethod() = default;
    explicit GETLISTApiMethod(const ValueMap& attributes) : BASEApiMethod(attributes) {}

    virtual GETListFilter GetFilter() const = 0;
    virtual void SetFilter(const GETListFilter& filter) = 0;
};

/// As API_METHOD, for the method GetList.
#define API_GETLIST_METHOD(Object, Async, Privilege) \
    API_METHOD_OF(GETLISTApiMethod, API##Object##GetListMethod, Object, GetList, Async, Privilege)
