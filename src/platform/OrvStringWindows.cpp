// Texts on their way to OLE Automation.

#include <OrvUQL/OrvString.h>

#include <new>

#include <windows.h>

#include <oleauto.h>

wchar_t* OrvStringT::AllocSysString() const {
    BSTR const text = SysAllocStringLen(units, static_cast<UINT>(GetLength()));
    if (text == nullptr) {
        throw std::bad_alloc();
    }
    return text;
}
