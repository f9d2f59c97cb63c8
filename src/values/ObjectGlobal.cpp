#include "OrvUQL/ObjectGlobal.h"

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/QueryElement.h"
#include "OrvUQL/Scalars.h"

#include "core/EngineAccess.h"
#include "core/Failure.h"
#include "core/NumberConversion.h"
#include "platform/CaseMap.h"
#include "platform/Meter.h"
#include "platform/Random.h"
#include "platform/Sine.h"

#include <cmath>
#include <cstdlib>

namespace OrvUQL {

namespace {

constexpr double pi = 3.141592653589793;
constexpr double e = 2.718281828459045;
constexpr double halfPi = 1.5707963267948966;

bool NameIs(const OrvStringT& name, std::wstring_view text) noexcept { return platform::EqualsIgnoreCase(name, text); }

/// 32 random bits. Without a secure source the C library's generator, scaled from the 15 bits that it has everywhere.
std::uint32_t RandomBits() noexcept {
    std::uint32_t bits = 0;
    if (platform::SecureRandom(bits)) {
        return bits;
    }
    constexpr std::uint64_t runtimeMaximum = 32767;
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(std::rand() & 0x7fff) * 4294967295u / runtimeMaximum);
}

/// Whether `a` is greater than `b`: as ints unless one of them is a double. False on failure.
bool IsGreater(IObject* a, IObject* b, bool& greater, IError** err) {
    if (a->GetType() != IObject::TypeDouble && b->GetType() != IObject::TypeDouble) {
        int x = 0;
        int y = 0;
        if (!a->ToInt(x, err) || !b->ToInt(y, err)) {
            return false;
        }
        greater = x > y;
        return true;
    }
    double x = 0;
    double y = 0;
    if (!a->ToDouble(x, err) || !b->ToDouble(y, err)) {
        return false;
    }
    greater = x > y;
    return true;
}

} // namespace

ObjectGlobal::~ObjectGlobal() = default;

const ObjectBase::MethodMap* ObjectGlobal::_GetMethodMap() const {
    static const MethodMap table[] = {
        MethodMap::Method(L"bool", L"", &ObjectGlobal::Method_Bool),
        MethodMap::Method(L"int", L"", &ObjectGlobal::Method_Int),
        MethodMap::Method(L"double", L"", &ObjectGlobal::Method_Double),
        MethodMap::Method(L"string", L"", &ObjectGlobal::Method_String),
        MethodMap::Method(L"pi", L"", &ObjectGlobal::Method_Const),
        MethodMap::Method(L"e", L"", &ObjectGlobal::Method_Const),
        MethodMap::Method(L"min", L"N*", &ObjectGlobal::Method_MinMax),
        MethodMap::Method(L"max", L"N*", &ObjectGlobal::Method_MinMax),
        MethodMap::Method(L"sqrt", L"D", &ObjectGlobal::Method_Math1),
        MethodMap::Method(L"sin", L"D", &ObjectGlobal::Method_Math1),
        MethodMap::Method(L"cos", L"D", &ObjectGlobal::Method_Math1),
        MethodMap::Method(L"tan", L"D", &ObjectGlobal::Method_Math1),
        MethodMap::Method(L"atan", L"D", &ObjectGlobal::Method_Math1),
        MethodMap::Method(L"exp", L"D", &ObjectGlobal::Method_Math1),
        MethodMap::Method(L"log", L"D", &ObjectGlobal::Method_Math1),
        MethodMap::Method(L"iif", L"BEE", &ObjectGlobal::Method_IIf),
        MethodMap::Method(L"array", L"o*", &ObjectGlobal::Method_Array),
        MethodMap::Method(L"chr", L"I", &ObjectGlobal::Method_Chr),
        MethodMap::Method(L"rnd", L"i", &ObjectGlobal::Method_Rnd),
        MethodMap::Method(L"radix", L"IIi", &ObjectGlobal::Method_Radix),
        MethodMap::Method(L"round", L"Di", &ObjectGlobal::Method_Round),
        MethodMap::End(),
    };
    return table;
}

const ObjectBase::MethodMap* ObjectGlobal::GetMethodMap() const { return _GetMethodMap(); }
OrvStringT ObjectGlobal::GetTypeName() const { return ORV_TEXT(L"global"); }

IObject* ObjectGlobal::Method_Bool(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectBool();
}

IObject* ObjectGlobal::Method_Int(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectInt();
}

IObject* ObjectGlobal::Method_Double(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectDouble();
}

IObject* ObjectGlobal::Method_String(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) {
    return new ObjectString();
}

IObject* ObjectGlobal::Method_Const(QueryEngine*, const OrvStringT& name, const ObjectList&, IError**) {
    if (NameIs(name, L"pi")) {
        return new ObjectDouble(pi);
    }
    return new ObjectDouble(NameIs(name, L"e") ? e : 0.0);
}

IObject* ObjectGlobal::Method_MinMax(QueryEngine*, const OrvStringT& name, const ObjectList& params, IError** err) {
    if (params.empty()) {
        return nullptr;
    }
    const bool wantMax = NameIs(name, L"max");
    IObject* best = params[0];
    for (std::size_t index = 1; index < params.size(); ++index) {
        IObject* const candidate = params[index];
        // Strictly greater in either direction: of equal arguments the first wins.
        bool better = false;
        if (!(wantMax ? IsGreater(candidate, best, better, err) : IsGreater(best, candidate, better, err))) {
            return nullptr;
        }
        if (better) {
            best = candidate;
        }
    }
    best->AddRef();
    return best;
}

IObject* ObjectGlobal::Method_Math1(QueryEngine*, const OrvStringT& name, const ObjectList& params, IError** err) {
    if (params.size() != 1) {
        return FailNull(err, message::invalidNumberOfParameters);
    }
    double x = 0;
    if (!params[0]->ToDouble(x, err)) {
        return nullptr;
    }
    if (NameIs(name, L"sqrt")) {
        if (x >= 0) {
            return new ObjectDouble(std::sqrt(x));
        }
        return FailNull(err, message::negativeSquareRoot, OrvUtils::String::ToStringW(x));
    }
    if (NameIs(name, L"sin")) {
        return new ObjectDouble(platform::Sine(x));
    }
    if (NameIs(name, L"cos")) {
        return new ObjectDouble(platform::Cosine(x));
    }
    if (NameIs(name, L"tan")) {
        return new ObjectDouble(std::tan(x));
    }
    if (NameIs(name, L"atan")) {
        // The limit is the tangent's, not the arc tangent's, which needs none; kept deliberately.
        if (-halfPi < x && x < halfPi) {
            return new ObjectDouble(std::atan(x));
        }
        return FailNull(err, message::invalidArgument, name, OrvUtils::String::ToStringW(x));
    }
    if (NameIs(name, L"log")) {
        if (x > 0) {
            return new ObjectDouble(std::log(x));
        }
        return FailNull(err, message::invalidArgument, name, OrvUtils::String::ToStringW(x));
    }
    // "exp" has its row in the table and no computation, deliberately kept: it always fails.
    return FailNull(err, message::internalErrorInMethod, name);
}

IObject* ObjectGlobal::Method_IIf(QueryEngine* engine, const OrvStringT&, const ObjectList& params, IError** err) {
    bool condition = false;
    if (!params[0]->ToBool(condition, err)) {
        return nullptr;
    }
    const IQueryElement* const branch = GetQueryElement(params[condition ? 1 : 2]);
    return branch == nullptr ? nullptr : detail::EvaluateArgument(branch, engine, err);
}

IObject* ObjectGlobal::Method_Array(QueryEngine*, const OrvStringT&, const ObjectList& params, IError**) {
    platform::Charge(params.size());
    ObjectList items;
    items.reserve(params.size());
    for (IObject* param : params) {
        if (param != nullptr) {
            param->AddRef();
            items.push_back(param);
        }
    }
    return new ObjectArray(std::move(items));
}

IObject* ObjectGlobal::Method_Chr(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    int code = 0;
    if (!params[0]->ToInt(code, err)) {
        return nullptr;
    }
    if (static_cast<unsigned>(code) > 0xffffu) {
        return FailNull(err, message::invalidCharacterCode, OrvUtils::String::ToStringW(code));
    }
    return new ObjectString(OrvStringT(static_cast<wchar_t>(code), 1));
}

IObject* ObjectGlobal::Method_Rnd(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    const std::uint32_t bits = RandomBits();
    if (params[0] == nullptr) {
        return new ObjectInt(static_cast<int>(bits >> 1));
    }
    int limit = 0;
    if (!params[0]->ToInt(limit, err)) {
        return nullptr;
    }
    // A negative limit is not guarded: the product is taken as it comes out of 64 bits.
    const std::uint64_t product = static_cast<std::uint64_t>(static_cast<std::int64_t>(limit)) * bits;
    return new ObjectInt(static_cast<int>(static_cast<std::uint32_t>(product / 4294967295u)));
}

IObject* ObjectGlobal::Method_Radix(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    int value = 0;
    int radix = 0;
    int width = 0;
    if (!params[0]->ToInt(value, err) || !params[1]->ToInt(radix, err) ||
        (params[2] != nullptr && !params[2]->ToInt(width, err))) {
        return nullptr;
    }
    return MakeRadixText(value, radix, width, err);
}

IObject* ObjectGlobal::Method_Round(QueryEngine*, const OrvStringT&, const ObjectList& params, IError** err) {
    double number = 0;
    int decimals = 0;
    if (!params[0]->ToDouble(number, err) || !ReadRoundingPrecision(params[1], decimals, err)) {
        return nullptr;
    }
    return new ObjectDouble(RoundToDecimals(number, decimals));
}

} // namespace OrvUQL
