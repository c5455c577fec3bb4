// SPDX-License-Identifier: MIT
// The root of the framework's classes and their run-time class information: the name of an object's class
// and the chain of its bases, for classes that ask for it with DECLARE_DYNAMIC and IMPLEMENT_DYNAMIC.
#pragma once

struct CRuntimeClass
{
    const char* m_lpszClassName;
    const CRuntimeClass* m_pBaseClass; // null for CObject
};

#define RUNTIME_CLASS(className) (&className::class##className)

// Stands in the class; what follows it is protected.
#define DECLARE_DYNAMIC(className)                                                                           \
public:                                                                                                      \
    static const CRuntimeClass class##className;                                                             \
    const CRuntimeClass* GetRuntimeClass() const override;                                                   \
                                                                                                             \
protected:

#define IMPLEMENT_DYNAMIC(className, baseName)                                                               \
    const CRuntimeClass className::class##className = {#className, RUNTIME_CLASS(baseName)};                 \
    const CRuntimeClass* className::GetRuntimeClass() const                                                  \
    {                                                                                                        \
        return RUNTIME_CLASS(className);                                                                     \
    }

class CObject
{
public:
    static const CRuntimeClass classCObject;

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    virtual const CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject() = default;

protected:
    CObject() = default;
};
