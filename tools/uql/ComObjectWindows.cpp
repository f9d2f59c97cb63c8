#include "ComObject.h"

#include "SystemMessageWindows.h"

#include <objbase.h>

namespace OrvUQL::Tool {

namespace {

HRESULT CreateDispatch(const std::string& programId, Ref<IDispatch>& dispatch) {
    CLSID classId;
    const HRESULT result = ::CLSIDFromProgID(OrvStringT::FromUtf8(programId).GetString(), &classId);
    if (FAILED(result)) {
        return result;
    }
    return ::CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch,
                              reinterpret_cast<void**>(dispatch.Receive()));
}

} // namespace

bool HasComObjects() { return true; }

ComApartment::~ComApartment() {
    if (isEntered) {
        ::CoUninitialize();
    }
}

Ref<IObject> ComApartment::Create(const std::string& programId, std::string& error) {
    if (!isEntered) {
        // Most automation servers are written for a thread of their own; in a common apartment each read of a property
        // would wait for another thread.
        const HRESULT result = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
        if (FAILED(result)) {
            error = "COM: " + GetResultMessage(result);
            return Ref<IObject>();
        }
        isEntered = true;
    }
    Ref<IDispatch> dispatch;
    const HRESULT result = CreateDispatch(programId, dispatch);
    if (FAILED(result)) {
        error = programId + ": " + GetResultMessage(result);
        return Ref<IObject>();
    }
    return Ref<IObject>(new ObjectCom(dispatch.Get()));
}

} // namespace OrvUQL::Tool
