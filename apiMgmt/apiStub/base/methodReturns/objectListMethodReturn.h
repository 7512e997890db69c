#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"

/// What the two returns that carry objects have in common: a list of `Object`, of which a
/// single return uses the first, and its ownership.
template <class Object>
class OBJECTListMethodReturn : public BASEApiMethodReturn {
public:
    ~OBJECTListMethodReturn() override {
        if (m_ownsObjects) {
            CleanUpApiObjects();
        }
    }

    bool IsArray() const { return m_isArray; }

    /// The object of a single return, null when there is none; null for an array return,
    /// whatever it holds. It belongs to this return.
    Object* GetObject() const {
        return m_isArray || m_objects.empty() ? nullptr : m_objects.front();
    }
    /// All objects; they belong to this return.
    const std::vector<Object*>& GetObjects() const { return m_objects; }

    /// Whether the destructor deletes the objects. True at first.
    void SetOwnsObjects(bool ownsObjects) { m_ownsObjects = ownsObjects; }

    /// Appends `object`, which then belongs to this return; null is not appended. `replace`
    /// deletes the objects held before. Without it a single return that holds an object keeps
    /// that one, and `object` stays with the caller.
    void SetReturnObject(Object* object, bool replace) {
        if (replace) {
            DeleteAllBut({object});
            m_objects.clear();
        } else if (IsFull()) {
            return;
        }
        if (object != nullptr) {
            m_objects.push_back(object);
        }
    }

    /// Takes the objects of `objects` in place of those held before, which it deletes as the
    /// destructor would have, save those that `objects` holds too. Null pointers are skipped.
    void SetReturnObject(const std::vector<Object*>& objects) {
        if (m_ownsObjects) {
            DeleteAllBut(objects);
        }
        m_objects = objects;
        std::erase(m_objects, nullptr);
    }

    /// Deletes the objects and empties the list.
    void CleanUpApiObjects() {
        DeleteAllBut({});
        m_objects.clear();
    }

protected:
    OBJECTListMethodReturn(bool isArray, bool successful, BASEApiMethod* method)
        : BASEApiMethodReturn(successful, method), m_isArray(isArray) {}

    /// Whether a further object would not be taken.
    bool IsFull() const { return !m_isArray && !m_objects.empty(); }
    void Append(std::unique_ptr<Object> object) {
        m_objects.push_back(object.get());
        object.release();  // NOLINT(bugprone-unused-return-value): the list holds it now
    }

private:
    bool m_isArray;
    std::vector<Object*> m_objects;
    bool m_ownsObjects = true;

    void DeleteAllBut(const std::vector<Object*>& kept) {
        for (Object* object : m_objects) {
            if (std::find(kept.begin(), kept.end(), object) == kept.end()) {
                delete object;
            }
        }
    }
};
