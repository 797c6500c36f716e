// ObjectBase: root class with a run-time type name.
#ifndef TEVBASE_OBJECTBASE_H
#define TEVBASE_OBJECTBASE_H

#include <tevbase/config.h>

class TEVBASE_API ObjectBase {
public:
    ObjectBase() = default;
    ObjectBase(const ObjectBase&) = default;
    ObjectBase& operator=(const ObjectBase&) { return *this; }
    virtual ~ObjectBase();

    static const char* TypeName() { return "ObjectBase"; }
    // True when name is this class's type name; derived classes add their own names.
    virtual bool IsA(const char* name) const;
};

#endif
