// A class derived from each public class, so that the compiler lays out its tables of virtual functions and its fields
// and prints them. Compiled, never linked.
//
// What can be said in a static_assert stands here: the numbers that travel between modules, and the records that hosts
// write down as tables. The rest is compared by class_tables.py.

#include <OrvUQL/OrvUQL.h>

#include <cstddef>

using namespace OrvUQL;

#define PROBE_WITH(base, arguments)                                                                                    \
    struct AbiProbe##base : base {                                                                                     \
        AbiProbe##base();                                                                                              \
    };                                                                                                                 \
    AbiProbe##base::AbiProbe##base() : base arguments {}
#define PROBE(base) PROBE_WITH(base, ())

// Names without brackets, which the macro can extend; the tables write RefCountImpl<IError>.
using RefCountImplOfIError = RefCountImpl<IError>;
using RefCountImplOfIObject = RefCountImpl<IObject>;
using RefCountImplOfIQueryElement = RefCountImpl<IQueryElement>;
using RefCountImplOfIUnitDefinition = RefCountImpl<IUnitDefinition>;
using RefCountImplOfIUnitFactory = RefCountImpl<IUnitFactory>;

static QueryElementList noArguments;

// Counting, texts and errors.
PROBE(IRefCountObject)
PROBE(OrvStringT)
PROBE(ObjectList)
PROBE(QueryElementList)
PROBE(IError)
PROBE(RefCountImplOfIError)
PROBE_WITH(Error, (L""))
PROBE(IResourceManager)

// Values.
PROBE(IObject)
PROBE(RefCountImplOfIObject)
PROBE(ObjectBase)
PROBE_WITH(ObjectBaseStaticImpl, (false))
PROBE(ObjectNull)
PROBE(ObjectBool)
PROBE_WITH(ObjectNumeric, (false))
PROBE(ObjectInt)
PROBE(ObjectDouble)
PROBE(ObjectString)
PROBE(ObjectArrayBase)
PROBE_WITH(ObjectArray, (ObjectList()))
PROBE_WITH(ObjectExpression, (nullptr))
PROBE_WITH(ObjectIterator, (nullptr, nullptr, nullptr, nullptr))
PROBE(ObjectGlobal)
#if defined(_WIN32)
PROBE_WITH(ObjectCom, (nullptr))
#endif
PROBE_WITH(ObjectUnit, (nullptr, 0.0, 1, false))

// Units.
PROBE(IUnit)
PROBE(IUnitDefinition)
PROBE(RefCountImplOfIUnitDefinition)
PROBE_WITH(UnitDefinition, (1, L"", 1.0, nullptr))
PROBE(IUnitFactory)
PROBE(RefCountImplOfIUnitFactory)
PROBE(UnitFactoryBase)
PROBE_WITH(LinearDimensionUnits, (0.0))

// Query elements and the engine.
PROBE(IQueryElement)
PROBE(RefCountImplOfIQueryElement)
PROBE(QueryElementBase)
PROBE_WITH(ElementObject, (1, 0))
PROBE_WITH(ElementMethod, (nullptr, L"", noArguments, false, 0))
PROBE_WITH(ElementGroup, (nullptr, nullptr, 0))
PROBE_WITH(ElementArray, (noArguments, 0))
PROBE_WITH(OperatorUnary, (L"-", nullptr, 0))
PROBE_WITH(OperatorBinary, (L"+", nullptr, nullptr, 0))
PROBE_WITH(OperatorTernary, (L"?", nullptr, nullptr, nullptr, 0))
PROBE(QueryEngine)

// Codes that cross the interface have 32 bits and fixed numbers.
static_assert(sizeof(IObject::EType) == 4);
static_assert(IObject::TypeNull == 0 && IObject::TypeBool == 1 && IObject::TypeInt == 2 && IObject::TypeDouble == 3);
static_assert(IObject::TypeString == 4 && IObject::TypeArray == 5 && IObject::TypeUnit == 6 && IObject::TypeCom == 7);
static_assert(IObject::TypeGlobal == 8 && IObject::TypeExpression == 9);
static_assert(sizeof(IQueryElement::EType) == 4);
static_assert(IQueryElement::Object == 0 && IQueryElement::Method == 1 && IQueryElement::Operator == 2);
static_assert(IQueryElement::Group == 3 && IQueryElement::Array == 4);
static_assert(sizeof(EOperType) == 4);
static_assert(OperNone == 0 && OperGreater == 1 && OperGreaterEqual == 2 && OperLess == 3 && OperLessEqual == 4);
static_assert(OperEqual == 5 && OperStrictEqual == 6 && OperNotEqual == 7);
static_assert(sizeof(VariantResult) == 4);

// A text is one pointer: it fits where a pointer does, and its header stands in front of the units.
static_assert(sizeof(OrvStringT) == sizeof(void*));
static_assert(sizeof(OrvTextHeader) == 12);

// The rows that hosts write.
static_assert(offsetof(UnitData, id) == 0 && offsetof(UnitData, name) == 8 && offsetof(UnitData, factor) == 16);
static_assert(sizeof(UnitData) == 24);

// A pointer to a member function is one address under Microsoft's ABI (no value class has virtual bases, and the
// adjustment is a field of its own), elsewhere an address and an adjustment.
using MethodMap = ObjectBase::MethodMap;
#if defined(_MSC_VER)
static_assert(offsetof(MethodMap, base) == 0 && offsetof(MethodMap, baseAdjust) == 8);
static_assert(offsetof(MethodMap, name) == 16 && offsetof(MethodMap, signature) == 24);
static_assert(offsetof(MethodMap, handler) == 32 && offsetof(MethodMap, handlerAdjust) == 40);
static_assert(offsetof(MethodMap, isStatic) == 44 && sizeof(MethodMap) == 48);
#else
static_assert(offsetof(MethodMap, base) == 0 && offsetof(MethodMap, baseAdjust) == 16);
static_assert(offsetof(MethodMap, name) == 24 && offsetof(MethodMap, signature) == 32);
static_assert(offsetof(MethodMap, handler) == 40 && offsetof(MethodMap, handlerAdjust) == 56);
static_assert(offsetof(MethodMap, isStatic) == 60 && sizeof(MethodMap) == 64);
#endif
