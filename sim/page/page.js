// The simulator's page: asks for what is new twice a second and shows it.
"use strict";

const KEPT = 200;      // exchanges on the page
const EVERY = 500;     // milliseconds between two questions
let lastSeen = 0;
const shown = {};      // what the lists show now, to leave them alone while nothing changes

const at = (id) => document.getElementById(id);

/** An element with a class, and children that are elements or plain text, never markup. */
function make(tag, className, ...children) {
  const element = document.createElement(tag);
  if (className) element.className = className;
  element.append(...children);
  return element;
}

async function ask(path, method = "GET", body = undefined) {
  const headers = method === "GET" ? {} : { "Content-Type": "application/json" };
  const answer = await fetch(path, { method, headers, body: body && JSON.stringify(body) });
  const json = await answer.json();
  if (!answer.ok) throw new Error(json.error || answer.statusText);
  return json;
}

/** Whether `value` is not what `list` shows already. */
function changed(list, value) {
  const text = JSON.stringify(value);
  const differs = shown[list] !== text;
  shown[list] = text;
  return differs;
}

/** Does what a button asks for; shows the problem when it does not work out. */
async function act(work) {
  try {
    await work();
    at("problem").textContent = "";
    await refresh();
  } catch (problem) {
    at("problem").textContent = problem.message;
  }
}

// ---- clusters and volumes ----

const addresses = (list) => list.map((a) => `${a.address}:${a.port}`).join(", ");

function serverView(server) {
  const system = [server.hostname, server.osType, server.osVersion].filter(Boolean).join(" · ");
  const view = make("div", "server", make("strong", "", server.id), system,
    make("small", "mono", addresses(server.addresses)));
  for (const port of server.interfaces)
    view.append(make("span", "tag mono", [port.id, port.type].filter(Boolean).join(" ")));
  return view;
}

function clusterView(cluster) {
  const view = make("div", "cluster", make("strong", "", cluster.name),
    cluster.joined ? make("span", "tag good", "joined") : make("span", "tag warn", "expected"),
    make("small", "mono", [cluster.id, addresses(cluster.addresses)].filter(Boolean).join(" · ")));
  if (cluster.primaryReports)
    view.append(make("small", "", `primary manager announced ${cluster.primaryReports}×`));
  view.append(...cluster.servers.map(serverView));
  return view;
}

function volumeRow(volume) {
  const identity = (what, device, serial) =>
    make("small", "", `${what} `, make("span", "mono", `${device} / ${serial}`));
  const name = make("td", "", make("strong", "", volume.id), make("small", "", volume.name),
    make("details", "", make("summary", "", "SCSI identities"),
      identity("original", volume.originalDeviceId, volume.originalSerialNumber),
      identity("alias", volume.aliasDeviceId, volume.aliasSerialNumber)));
  const owner = make("td", "", volume.attachedTo ? make("span", "tag good", volume.attachedTo) : "—");
  const data = make("td", "", ...volume.availableOn.map((id) => make("span", "tag", id)));
  const snapshots = make("td", "", ...volume.snapshots.map((s) =>
    make("span", "tag", `${s.id}: prepared ${s.prepared}, flushed ${s.flushed}`)));
  return make("tr", "", name, owner, data, snapshots);
}

function showState(state) {
  if (!changed("state", state)) return;
  at("array").textContent = `${state.array.name} · SN ${state.array.serialNumber}`;
  at("clusterCount").textContent = state.clusters.length;
  at("volumeCount").textContent = state.volumes.length;
  at("clusters").replaceChildren(...state.clusters.map(clusterView));
  if (!state.clusters.length)
    at("clusters").append(make("p", "hint", "No cluster has joined yet."));
  at("volumes").replaceChildren(...state.volumes.map(volumeRow));
}

// ---- exchanges ----

function exchangeView(exchange) {
  const good = exchange.outcome === "ok";
  const badge = make("span", exchange.fault ? "tag warn" : good ? "tag good" : "tag bad",
    exchange.fault || (good ? "ok" : "refused"));
  const line = make("summary", "", make("time", "", exchange.time.slice(11, 23)),
    make("span", "", exchange.command.replace("::", " · ")), badge);
  if (!good) line.append(make("span", "outcome", exchange.outcome.replace(/^refused: /, "")));
  const who = `from ${exchange.clientAddress || "?"}, cluster ${exchange.hccId || "none"}, ` +
    `credentials ${exchange.credentials || "none"}, token ${exchange.authToken || "none"}, ` +
    `${(exchange.tookMicroseconds / 1000).toFixed(1)} ms`;
  const body = make("div", "body", make("small", "", who),
    make("h3", "", "Received"), make("pre", "", exchange.requestIndented),
    make("h3", "", "Sent"), make("pre", "", exchange.replyIndented));
  const item = make("li", "new", make("details", "", line, body));
  item.dataset.id = exchange.id;
  return item;
}

function showExchanges(exchanges) {
  // Two answers may hold the same exchange: a button asks out of turn.
  for (const exchange of exchanges.filter((one) => one.id > lastSeen)) {
    lastSeen = Math.max(lastSeen, exchange.id);
    at("exchanges").prepend(exchangeView(exchange));
  }
  while (at("exchanges").childElementCount > KEPT) at("exchanges").lastElementChild.remove();
  const count = at("exchanges").childElementCount;
  at("exchangeCount").textContent = count === KEPT ? `last ${KEPT}` : count;
  at("noExchanges").hidden = count > 0;
}

// ---- faults ----

function kindButton(kind) {
  const button = make("button", "", kind.name);
  button.type = "button";
  button.dataset.fault = kind.name;
  button.title = `The array ${kind.does}. The client sees: ${kind.clientSees}.`;
  const explain = () => { at("kindHelp").textContent = button.title; };
  button.addEventListener("mouseenter", explain);
  button.addEventListener("focus", explain);
  button.addEventListener("click", () => act(() => ask("/api/faults", "POST", ruleFor(kind.name))));
  return button;
}

function ruleFor(fault) {
  const rule = { command: at("command").value, fault };
  for (const name of ["count", "after", "delayMs"])
    if (at(name).value !== "") rule[name] = Number(at(name).value);
  for (const name of ["error", "code"])
    if (at(name).value !== "") rule[name] = at(name).value;
  return rule;
}

function ruleView(rule) {
  const calls = rule.count === 0 ? "every call" : `${rule.count}×`;
  const remove = make("button", "quiet", "×");
  remove.title = "Take it back";
  remove.addEventListener("click", () => act(() => ask(`/api/faults?id=${rule.id}`, "DELETE")));
  return make("li", "", make("span", "tag warn", rule.fault),
    `${rule.command}, ${calls}${rule.after ? ` after ${rule.after}` : ""}`, remove);
}

function showFaults(faults) {
  if (!at("kinds").childElementCount) {
    at("kinds").append(...faults.kinds.map(kindButton));
    at("command").append(new Option("every command", "*"),
      ...faults.commands.map((name) => new Option(name.replace("::", " · "), name)));
  }
  if (!changed("rules", faults.rules)) return;
  at("ruleCount").textContent = faults.rules.length;
  at("rules").replaceChildren(...faults.rules.map(ruleView));
  at("noRules").hidden = faults.rules.length > 0;
}

// ---- all of it ----

async function refresh() {
  const [exchanges, state, faults] = await Promise.all([
    ask(`/api/exchanges?last=${KEPT}&since=${lastSeen}`), ask("/api/state"), ask("/api/faults")]);
  showExchanges(exchanges);
  showState(state);
  showFaults(faults);
}

async function keepFresh() {
  try {
    await refresh();
    at("live").textContent = "live";
    at("live").classList.add("on");
  } catch {
    at("live").textContent = "the simulator does not answer";
    at("live").classList.remove("on");
    // One that is started again counts from 1.
    lastSeen = 0;
    at("exchanges").replaceChildren();
  }
  setTimeout(keepFresh, EVERY);
}

for (const button of document.querySelectorAll("[data-reset]")) {
  button.addEventListener("click", () => act(async () => {
    const what = button.dataset.reset;
    await ask("/api/reset", "POST", { what });
    if (what === "log" || what === "all") at("exchanges").replaceChildren();
  }));
}
at("rule").addEventListener("submit", (event) => event.preventDefault());
keepFresh();
