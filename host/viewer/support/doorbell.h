// SPDX-License-Identifier: BSD-3-Clause
// Doorbell: how another thread tells the window's that there is something to fetch.
//
//   worker  --puts its result into a box with a lock-->  rings
//   window  <--Rung, in its event loop--  fetches from the box
//
// Results never travel in events: what is shared between the threads is guarded by locks that the
// sanitizers see.
#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace glimmerhost {

class Doorbell : public QObject {
  Q_OBJECT

 public:
  explicit Doorbell(QObject* parent = nullptr);
  ~Doorbell() override;

  // Rings. Any thread may call it, also when the bell is gone; several rings before Rung are one.
  std::function<void()> Ringer() const;

 signals:
  // On the thread of this object.
  void Rung();

 protected:
  bool event(QEvent* event) override;

 private:
  struct State;

  static bool TryRing(State* state);

  std::shared_ptr<State> state_;
};

}  // namespace glimmerhost
