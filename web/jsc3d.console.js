// The messages of the viewer jsc3d, written to the browser's console.
// The viewer is silent without it. To be loaded after jsc3d.js.
(function () {
    "use strict";
    if (typeof JSC3D === "undefined") return;

    JSC3D.console = {
        logInfo: function (message) { console.info("jsc3d: " + message); },
        logWarning: function (message) { console.warn("jsc3d: " + message); },
        logError: function (message) { console.error("jsc3d: " + message); }
    };
})();
