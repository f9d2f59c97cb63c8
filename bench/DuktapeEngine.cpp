#include "DuktapeEngine.h"

#include "Program.h"

#include <cstdlib>
#include <new>
#include <stdexcept>

namespace OrvUQL::bench {

namespace {

void* Allocate(void* count, duk_size_t size) {
    ++*static_cast<std::size_t*>(count);
    return std::malloc(size);
}

void* Reallocate(void* count, void* block, duk_size_t size) {
    ++*static_cast<std::size_t*>(count);
    return std::realloc(block, size);
}

void Free(void*, void* block) { std::free(block); }

const Record* current = nullptr;

/// Lists are not made anew: each lies in a slot of the stack.
void Push(duk_context* duktape, const Value& value, duk_idx_t listSlot) {
    if (const int* const whole = std::get_if<int>(&value)) {
        duk_push_int(duktape, *whole);
    } else if (const double* const real = std::get_if<double>(&value)) {
        duk_push_number(duktape, *real);
    } else if (const std::string* const text = std::get_if<std::string>(&value)) {
        duk_push_lstring(duktape, text->data(), text->size());
    } else {
        duk_dup(duktape, listSlot);
    }
}

void PushList(duk_context* duktape, List list) {
    duk_push_array(duktape);
    duk_uarridx_t position = 0;
    for (const int number : NumbersOf(list)) {
        duk_push_int(duktape, number);
        duk_put_prop_index(duktape, -2, position++);
    }
}

/// The getter of a member, or the host's function for a variable; its magic number is the position in the record.
duk_ret_t ReadVariable(duk_context* duktape) {
    Push(duktape, (*current)[static_cast<std::size_t>(duk_get_current_magic(duktape))].value, 0);
    return 1;
}

void PushObject(duk_context* duktape, const Record& record) {
    duk_push_object(duktape);
    duk_int_t position = 0;
    for (const Variable& variable : record) {
        duk_push_string(duktape, variable.name.c_str());
        duk_push_c_lightfunc(duktape, ReadVariable, 0, 0, position++);
        duk_def_prop(duktape, -3, DUK_DEFPROP_HAVE_GETTER);
    }
}

} // namespace

std::string DuktapeEngine::Version() {
    return "Duktape " + std::to_string(DUK_VERSION / 10000) + '.' + std::to_string(DUK_VERSION / 100 % 100) + '.' +
           std::to_string(DUK_VERSION % 100);
}

DuktapeEngine::DuktapeEngine(const Case& test)
    : owner(duk_create_heap(Allocate, Reallocate, Free, &allocations, nullptr)),
      duktape(owner.get()),
      records(test.records),
      passing(test.passing),
      reading(Reading::Text) {
    if (duktape == nullptr) {
        throw std::bad_alloc();
    }
    if (std::holds_alternative<bool>(test.answer)) {
        reading = Reading::Truth;
    } else if (std::holds_alternative<double>(test.answer)) {
        reading = Reading::Number;
    }
    const Record& first = records[0];
    std::string parameters;
    if (passing == Passing::Members) {
        parameters = "r";
    } else {
        for (const Variable& variable : first) {
            parameters += (parameters.empty() ? "" : ", ") + variable.name;
        }
    }
    text = "function (" + parameters + ") { return " + test.javaScript + "; }";

    Compile();
    duk_push_array(duktape);
    if (passing == Passing::Members) {
        PushObject(duktape, first);
        return;
    }
    duk_int_t position = 0;
    for (const Variable& variable : first) {
        if (const List* const list = std::get_if<List>(&variable.value)) {
            PushList(duktape, *list);
        } else if (passing == Passing::Functions) {
            duk_push_c_lightfunc(duktape, ReadVariable, 0, 0, position);
        } else {
            duk_push_null(duktape);
        }
        ++position;
    }
}

bool DuktapeEngine::Call(std::size_t position) {
    const Record& record = records[position];
    current = &record;
    duk_dup(duktape, functionSlot);
    if (passing == Passing::Members) {
        duk_dup(duktape, recordSlot);
        return duk_pcall(duktape, 1) == DUK_EXEC_SUCCESS;
    }
    duk_idx_t slot = recordSlot;
    for (const Variable& variable : record) {
        if (passing == Passing::Functions) {
            duk_dup(duktape, slot);
        } else {
            Push(duktape, variable.value, slot);
        }
        ++slot;
    }
    return duk_pcall(duktape, static_cast<duk_idx_t>(record.size())) == DUK_EXEC_SUCCESS;
}

Answer DuktapeEngine::GetAnswer(std::size_t record) {
    if (!Call(record)) {
        Throw();
    }
    Answer answer;
    switch (reading) {
    case Reading::Number:
        answer = static_cast<double>(duk_get_number(duktape, -1));
        break;
    case Reading::Truth:
        answer = duk_is_boolean(duktape, -1) != 0 && duk_get_boolean(duktape, -1) != 0;
        break;
    case Reading::Text: {
        duk_size_t length = 0;
        const char* const units = duk_get_lstring(duktape, -1, &length);
        answer = std::string(units == nullptr ? "" : units, length);
        break;
    }
    }
    duk_pop(duktape);
    return answer;
}

void DuktapeEngine::Parse() {
    Compile();
    duk_pop(duktape);
}

void DuktapeEngine::Keep() {
    Compile();
    duk_put_prop_index(duktape, keptSlot, kept++);
}

void DuktapeEngine::Compile() {
    if (duk_pcompile_lstring(duktape, DUK_COMPILE_FUNCTION, text.data(), text.size()) != 0) {
        Throw();
    }
}

void DuktapeEngine::Throw() {
    const std::string message = duk_safe_to_string(duktape, -1);
    duk_pop(duktape);
    throw std::runtime_error(message);
}

} // namespace OrvUQL::bench

int main(int argc, char** argv) { return OrvUQL::bench::RunProgram<OrvUQL::bench::DuktapeEngine>(argc, argv); }
