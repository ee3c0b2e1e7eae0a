// A serial transmitter (8 data bits, no parity, one stop bit) and a console that prints through it.
//
// The clock is 1 MHz and the line runs at 115,200 baud, which is no whole number of clocks: a phase
// accumulator ends each bit on the nearest clock, so that bits are eight or nine clocks long. The
// console pauses between its lines: most of the capture is idle time.
`timescale 1us / 1us

module uart_transmitter #(parameter BAUD = 115200) (
    input [7:0] data,
    input send,  // toggles for each character
    output reg tx,
    output reg busy
);
  localparam CLOCK = 1000000;
  reg [9:0] frame;
  reg [3:0] left;
  reg last_send;
  integer phase;

  initial begin
    tx = 1;
    busy = 0;
    last_send = 0;
    left = 0;
    phase = 0;
  end

  always #1 begin
    if (!busy && send != last_send) begin
      last_send = send;
      frame = {1'b1, data, 1'b0};
      left = 10;
      phase = CLOCK;
      busy = 1;
    end
    if (busy) begin
      if (phase >= CLOCK) begin
        phase = phase - CLOCK;
        if (left == 0) busy = 0;
        else begin
          tx = frame[0];
          frame = frame >> 1;
          left = left - 1;
        end
      end
      phase = phase + BAUD;
    end
  end
endmodule

module uart_text;
  localparam SIZE = 64;
  wire TX, busy;
  reg [7:0] data;
  reg send;
  reg [8 * SIZE - 1:0] line;
  integer i;

  uart_transmitter transmitter (.data(data), .send(send), .tx(TX), .busy(busy));

  // The text stands at the low end of the register; leading bytes are zero.
  task print(input [8 * SIZE - 1:0] text);
    begin
      line = text;
      for (i = SIZE - 1; i >= 0; i = i - 1)
        if (line[8 * i +: 8] != 0) begin
          data = line[8 * i +: 8];
          send = !send;
          @(posedge busy) @(negedge busy);
        end
    end
  endtask

  initial begin
    $dumpfile("uart_text.vcd");
    $dumpvars(1, TX);
    send = 0;
    #700 print("boot: 64 channels ready\015\012");
    #250000 print("self test: PASS\015\012");
    #1250000 print("A quick brown fox jumps over the lazy dog.\015\012");
    #33333 print("0123456789 !\"#$%&'()*+,-./\015\012");
    #500000 $finish;
  end
endmodule
