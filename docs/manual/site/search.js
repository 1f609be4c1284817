// The search over the index of a language, which each page loads: pages that have every word, those with a word in the title first.
(function () {
  var input = document.getElementById("site-search"), list = document.getElementById("site-found");

  function find(text) {
    var words = text.toLowerCase().split(/\s+/).filter(Boolean), found = [];
    searchIndex.forEach(function (entry) {
      var title = entry[0].toLowerCase(), all = title + " " + entry[2].toLowerCase();
      if (!words.every(function (word) { return all.indexOf(word) >= 0; })) return;
      var rank = 0;
      words.forEach(function (word) {
        if (title === word || title.split(".").pop() === word) rank += 4;
        else if (title.indexOf(word) >= 0) rank += 2;
      });
      found.push({ entry: entry, rank: rank });
    });
    // Of equal ones the shorter is the more particular.
    found.sort(function (a, b) { return b.rank - a.rank || a.entry[2].length - b.entry[2].length; });
    return found.slice(0, 30);
  }

  function around(text, word) {
    var at = Math.max(0, text.toLowerCase().indexOf(word) - 40);
    return (at > 0 ? "…" : "") + text.substr(at, 120) + (text.length > at + 120 ? "…" : "");
  }

  function show() {
    var text = input.value.trim();
    list.textContent = "";
    list.hidden = text.length < 2;
    if (list.hidden) return;
    var found = find(text);
    found.forEach(function (result) {
      var item = document.createElement("li"), link = document.createElement("a"), words = document.createElement("span");
      link.href = result.entry[1];
      link.textContent = result.entry[0];
      words.textContent = " " + around(result.entry[2], text.toLowerCase().split(/\s+/)[0]);
      item.appendChild(link);
      item.appendChild(words);
      list.appendChild(item);
    });
    if (!found.length) {
      var none = document.createElement("li");
      none.textContent = input.getAttribute("data-nothing");
      list.appendChild(none);
    }
  }

  input.addEventListener("input", show);
  // A link may carry a search: page.html?search=words.
  var asked = /[?&]search=([^&]*)/.exec(location.search);
  if (asked) input.value = decodeURIComponent(asked[1].replace(/\+/g, " "));
  show();
})();
