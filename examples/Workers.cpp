// A host with several threads. Each has an engine, functions, and a parsed query of its own, and makes its own objects
// of the records that it takes; what they share is the host's data, which nobody changes, and a counter. What goes from
// one thread to another are texts of the standard library, never objects of this one. Results come in the records'
// order.
#include <OrvUQL/OrvUQL.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace OrvUQL;

/// Gives the reference back when it goes out of scope.
struct Releaser {
    void operator()(IRefCountObject* object) const { object->Release(); }
};
template <class T> using Owned = std::unique_ptr<T, Releaser>;

/// The host's own data. Any number of threads may read it.
struct Order {
    int number;
    const char* article;
    int quantity;
    double price;
};

/// An order as queries see it, for the thread that made it.
class OrderObject : public ObjectBase {
public:
    /// The order is borrowed and has to outlive the object.
    explicit OrderObject(const Order& shown) : order(shown) {}

    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"order"); }
    const MethodMap* GetMethodMap() const override {
        // Shared by all threads: a table never changes.
        static const MethodMap table[] = {
            MethodMap::Property<&OrderObject::GetNumber>(L"Number"),
            MethodMap::Property<&OrderObject::GetArticle>(L"Article"),
            MethodMap::Property<&OrderObject::GetQuantity>(L"Quantity"),
            MethodMap::Property<&OrderObject::GetPrice>(L"Price"),
            MethodMap::Chain(&OrderObject::ObjectBaseMethods),
            MethodMap::End(),
        };
        return table;
    }

private:
    int GetNumber() const { return order.number; }
    OrvStringT GetArticle() const { return OrvStringT::FromUtf8(order.article); }
    int GetQuantity() const { return order.quantity; }
    double GetPrice() const { return order.price; }

    const Order& order;
};

/// What came of one order. Made by one thread and read by another: nothing in it is counted.
struct Answer {
    bool isGood = false;
    std::string text; ///< of the value, or of the error
};

/// Everything that one thread evaluates with.
class Worker {
public:
    explicit Worker(const wchar_t* text) {
        const Owned<IObject> functions(new ObjectGlobal);
        engine.SetGlobal(functions.get());
        query.reset(engine.ParseQuery(text, nullptr)); // the host has parsed it before: it can be
    }

    Answer Evaluate(const Order& order) {
        Answer answer;
        if (!query) {
            return answer;
        }
        const Owned<IObject> object(new OrderObject(order));
        engine.SetPropertySource(object.get());
        IError* error = nullptr;
        OrvStringT text;
        answer.isGood = engine.EvaluateTo(query.get(), text, &error);
        const Owned<IError> failure(error);
        answer.text = answer.isGood ? text.ToUtf8() : failure ? failure->GetMessageW().ToUtf8() : "no value";
        engine.SetPropertySource(nullptr);
        return answer;
    }

private:
    QueryEngine engine;
    Owned<IQueryElement> query; // given back before the engine goes
};

/// One answer for each order, in their order. As many threads as told, this one among them.
std::vector<Answer> EvaluateAll(const wchar_t* text, const std::vector<Order>& orders, unsigned threadCount) {
    constexpr std::size_t pieceSize = 64; // so that the counter is no bottleneck
    std::vector<Answer> answers(orders.size());
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        Worker worker(text); // made by the thread that uses it
        for (std::size_t begin = next.fetch_add(pieceSize); begin < orders.size(); begin = next.fetch_add(pieceSize)) {
            const std::size_t end = std::min(begin + pieceSize, orders.size());
            for (std::size_t place = begin; place < end; ++place) {
                answers[place] = worker.Evaluate(orders[place]); // nobody else writes there
            }
        }
    };
    std::vector<std::thread> threads;
    for (unsigned number = 1; number < threadCount; ++number) {
        threads.emplace_back(work);
    }
    work();
    for (std::thread& thread : threads) {
        thread.join();
    }
    return answers;
}

std::vector<Order> MakeOrders() {
    const char* const articles[] = {"bolt", "nut", "washer", "écrou", "gear"};
    std::vector<Order> orders;
    for (int number = 1; number <= 5000; ++number) {
        orders.push_back({number, articles[number % 5], number % 7, 0.25 * (number * 37 % 400)});
    }
    return orders;
}

} // namespace

int main() {
    constexpr const wchar_t* text = L"@number + ': ' + @article.ToUpper() + ', ' + (@price / @quantity).Round(2)";
    QueryEngine engine;
    IError* error = nullptr;
    if (const Owned<IQueryElement> query(engine.ParseQuery(text, &error)); !query) {
        const Owned<IError> failure(error);
        std::fprintf(stderr, "%s\n", failure ? failure->GetMessageW().ToUtf8().c_str() : "the query cannot be parsed");
        return 1;
    }

    const std::vector<Order> orders = MakeOrders();
    const std::vector<Answer> answers = EvaluateAll(text, orders, 4);
    int failures = 0;
    for (std::size_t place = 0; place < answers.size(); ++place) {
        failures += answers[place].isGood ? 0 : 1;
        if (place < 8 || place + 2 >= answers.size()) {
            std::printf("%s\n", answers[place].text.c_str());
        }
    }
    std::printf("%d orders, %d failures\n", static_cast<int>(answers.size()), failures);
    const std::vector<Answer> alone = EvaluateAll(text, orders, 1);
    const bool isSame = std::equal(answers.begin(), answers.end(), alone.begin(), alone.end(),
                                   [](const Answer& a, const Answer& b) { return a.text == b.text; });
    std::printf("one thread: %s\n", isSame ? "the same answers" : "other answers");
}
