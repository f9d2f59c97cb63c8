// The conversions that every value has by way of its display text.

#include "OrvUQL/ObjectBase.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/Scalars.h"
#include "OrvUQL/Unit.h"

#include "core/Failure.h"
#include "core/NumberConversion.h"
#include "platform/CaseMap.h"
#include "platform/Meter.h"
#include "platform/NumberText.h"

namespace OrvUQL {

bool ObjectBase::ToBool(bool& out, IError** err) const {
    return Guarded(err, [&] {
        OrvStringT text = ToString();
        if (platform::EqualsIgnoreCase(text, L"true")) {
            out = true;
            return true;
        }
        if (platform::EqualsIgnoreCase(text, L"false")) {
            out = false;
            return true;
        }
        double number = 0;
        if (!StringToDouble(text, number, L"Boolean", err)) {
            return false;
        }
        out = number != 0.0;
        return true;
    });
}

bool ObjectBase::ToInt(int& out, IError** err) const {
    return Guarded(err, [&] {
        OrvStringT text = ToString();
        double number = 0;
        if (!StringToDouble(text, number, L"Integer", err)) {
            return false;
        }
        return DoubleToInt(number, out) || Fail(err, message::intOverflow, text);
    });
}

bool ObjectBase::ToDouble(double& out, IError** err) const {
    return Guarded(err, [&] {
        OrvStringT text = ToString();
        return StringToDouble(text, out, L"Double", err);
    });
}

bool ObjectBase::ToString(OrvStringT& out, IError** err) const {
    return Guarded(err, [&] {
        out = ToString();
        return true;
    });
}

bool ObjectBase::StringToDouble(OrvStringT& text, double& out, const wchar_t* typeName, IError** err) {
    platform::ChargeUnits(text.GetLength());
    return platform::ParseDouble(text, out) || Fail(err, message::cannotConvertString, text, typeName);
}

IObject* ObjectBase::ToNumeric(IError** err) {
    return Guarded(err, [&]() -> IObject* {
        OrvStringT text = ToString();
        platform::ChargeUnits(text.GetLength());
        text.Trim();
        if (text.GetLength() >= 2 && text[0] == L'0' && (text[1] == L'x' || text[1] == L'X')) {
            std::size_t used = 0;
            const std::uint32_t bits = platform::ParseUnsigned(text, 0, used);
            if (used != text.View().size()) {
                return FailNull(err, message::cannotConvertToNumber, text);
            }
            // Deliberately no overflow error here: 0xFFFFFFFF and everything beyond it read as -1.
            return new ObjectInt(static_cast<int>(bits));
        }
        int integer = 0;
        double number = 0;
        switch (platform::ParseNumber(text, integer, number)) {
        case platform::NumberKind::Int:
            return new ObjectInt(integer);
        case platform::NumberKind::Double:
            return new ObjectDouble(number);
        case platform::NumberKind::None:
            break;
        }
        return FailNull(err, message::cannotConvertToNumber, text);
    });
}

IObject* ObjectBase::ChangeType(EType type, IError** err) {
    return Guarded(err, [&]() -> IObject* {
        switch (type) {
        case TypeBool: {
            bool value = false;
            return ToBool(value, err) ? new ObjectBool(value) : nullptr;
        }
        case TypeInt: {
            int value = 0;
            return ToInt(value, err) ? new ObjectInt(value) : nullptr;
        }
        case TypeDouble: {
            double value = 0;
            return ToDouble(value, err) ? new ObjectDouble(value) : nullptr;
        }
        case TypeString: {
            OrvStringT value;
            return ToString(value, err) ? new ObjectString(std::move(value)) : nullptr;
        }
        default:
            return nullptr;
        }
    });
}

IUnit* ObjectBase::ToUnit(IUnitDefinition*, IError** err) {
    return Guarded(err, [&]() -> IUnit* { return FailNull(err, message::valueToUnit, ToString(), GetTypeName()); });
}

bool ObjectBase::CompareTo(EOperType, IObject* other, bool reversed, bool&, IError** err) const {
    if (err == nullptr) {
        return false;
    }
    return Guarded(err, [&] {
        const OrvStringT mine = GetTypeName();
        const OrvStringT others = other->GetTypeName();
        return Fail(err, message::cannotCompare, reversed ? others : mine, reversed ? mine : others);
    });
}

bool ObjectBase::CompareStrings(const OrvStringT& a, const OrvStringT& b, bool caseSensitive) {
    return caseSensitive ? a == b : a.CompareNoCase(b) == 0;
}

} // namespace OrvUQL
